// The SQL function SEARCH_SCORE(column, text).
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>

namespace epgset {

/// How well a text matches what is searched for.
enum SearchScore { NoMatch = 0, MatchInside = 1, MatchAtWordStart = 2, MatchWhole = 3 };

/// `text` as it is compared: case folded, accents taken off. Bytes that are not UTF-8 stay as they are.
std::string foldedForSearch(std::string_view text);

/// The best match of a needle, folded already, in a text of any kind. An empty needle matches nothing.
SearchScore searchScore(std::string_view text, std::string_view foldedNeedle);

/// Registers SEARCH_SCORE(column, text) and answers SQLite's result code. The function answers a
/// SearchScore; 0 when either argument is NULL.
int registerSearchScore(sqlite3* database);

}  // namespace epgset
