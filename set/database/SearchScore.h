// The SQL function SEARCH_SCORE(column, text).
#pragma once

#include <sqlite3.h>

#include <string>
#include <string_view>

#include "set/database/SearchFolding.h"

namespace epgset {

/// How well a text matches what is searched for.
enum SearchScore { NoMatch = 0, MatchInside = 1, MatchAtWordStart = 2, MatchWhole = 3 };

/// A search for one text in many.
class Search {
public:
    /// The text to search for, as somebody typed it. What holds nothing but accents matches nothing.
    explicit Search(std::string_view text) : needle_(foldedForSearch(text)) {}

    /// The best match in a text of any kind. Keeps the memory of the folded text for the next.
    SearchScore scoreOf(std::string_view text);

private:
    std::string needle_;
    std::string folded_;
};

/// Registers SEARCH_SCORE(column, text) and answers SQLite's result code. The function answers a
/// SearchScore; 0 when either argument is NULL.
int registerSearchScore(sqlite3* database);

}  // namespace epgset
