#include "set/database/SearchScore.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "set/log/LogCapture.h"
#include "tests/set/database/TestDatabase.h"

namespace epgset {
namespace {

int score(std::string_view text, std::string_view needle) {
    return Search(needle).scoreOf(text);
}

TEST(SearchScore, IsZeroWithoutAMatch) {
    EXPECT_EQ(score("Evening News", "sport"), 0);
    EXPECT_EQ(score("", "news"), 0);
    EXPECT_EQ(score("new", "news"), 0);
}

TEST(SearchScore, AnEmptySearchMatchesNothing) {
    EXPECT_EQ(score("Evening News", ""), 0);
    EXPECT_EQ(score("", ""), 0);
    EXPECT_EQ(score("Evening News", "\xCC\x81"), 0) << "an accent alone is nothing to search for";
}

TEST(SearchScore, IsOneInsideAWordMoreAtItsStartAndMostForTheWholeText) {
    EXPECT_EQ(score("Renewsed", "news"), MatchInside);
    EXPECT_EQ(score("Evening News", "news"), MatchAtWordStart);
    EXPECT_EQ(score("News at Ten", "news"), MatchAtWordStart);
    EXPECT_EQ(score("Newsreel", "news"), MatchAtWordStart);
    EXPECT_EQ(score("NEWS", "news"), MatchWhole);
    EXPECT_LT(MatchInside, MatchAtWordStart);
    EXPECT_LT(MatchAtWordStart, MatchWhole);
}

TEST(SearchScore, TakesTheBestOfSeveralMatches) {
    EXPECT_EQ(score("Renews the News", "news"), MatchAtWordStart);
    EXPECT_EQ(score("aaaa", "aa"), MatchAtWordStart);
    EXPECT_EQ(score("xaaaa", "aa"), MatchInside);
}

TEST(SearchScore, AWordStartsAfterAnythingButALetterOrDigit) {
    EXPECT_EQ(score("(news)", "news"), MatchAtWordStart);
    EXPECT_EQ(score("the-news", "news"), MatchAtWordStart);
    EXPECT_EQ(score("24news", "news"), MatchInside);
    EXPECT_EQ(score("ünews", "news"), MatchInside);
    EXPECT_EQ(score("日本news", "news"), MatchInside);
    EXPECT_EQ(score("«news»", "news"), MatchAtWordStart);
}

TEST(SearchScore, LeavesCaseAside) {
    EXPECT_EQ(score("ÄRZTE", "ärzte"), MatchWhole);
    EXPECT_EQ(score("Straße", "STRASSE"), MatchWhole);
    EXPECT_EQ(score("НОВОСТИ дня", "новости"), MatchAtWordStart);
    EXPECT_EQ(score("Σίσυφος", "ΣΊΣΥΦΟΣ"), MatchWhole);
}

TEST(SearchScore, LeavesAccentsAside) {
    EXPECT_EQ(score("Café Olé", "cafe"), MatchAtWordStart);
    EXPECT_EQ(score("Cafe Ole", "olé"), MatchAtWordStart);
    EXPECT_EQ(score("Cafe\xCC\x81", "café"), MatchWhole) << "composed and decomposed are the same";
    EXPECT_EQ(score("İstanbul", "istanbul"), MatchWhole);
}

TEST(SearchScore, MarksThatMakeAnotherLetterAreNoAccents) {
    EXPECT_EQ(score("が", "か"), MatchAtWordStart);
    EXPECT_EQ(score("か", "が"), NoMatch);
    EXPECT_EQ(score("हिन्दी", "हन्दी"), NoMatch);
}

TEST(SearchScore, BytesThatAreNotUtf8MatchThemselves) {
    EXPECT_EQ(score("News \xFF\xFE", "news"), MatchAtWordStart);
    EXPECT_EQ(score("a\xFF z", "\xFF"), MatchInside);
    EXPECT_EQ(score("\xC3", "\xC3"), MatchWhole);
}

TEST(SearchScore, FindsWhatItFindsInTextsOfAnyLength) {
    const std::string filler(3000, 'x');
    EXPECT_EQ(score(filler + " News", "news"), MatchAtWordStart);
    EXPECT_EQ(score(filler, "news"), NoMatch);
    EXPECT_EQ(score(filler, filler), MatchWhole);
}

TEST(SearchScore, AnyBytesAreSearched) {
    std::mt19937 random(5);
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 20, ' ');
        for (char& byte : text)
            byte = static_cast<char>(random());
        const std::string needle = text.substr(0, random() % 5);
        ASSERT_GE(score(text, needle), 0);
        const int whole = foldedForSearch(text).empty() ? NoMatch : MatchWhole;
        ASSERT_EQ(score(text, text), whole);
    }
}

TEST(SearchScoreFunction, IsCalledFromSql) {
    const auto connection = openDatabase();
    ASSERT_EQ(run(connection, "CREATE TABLE t (name varchar(255), n INTEGER)"), SQLITE_DONE);
    ASSERT_EQ(
        run(connection, "INSERT INTO t VALUES ('Evening News', 1), ('Sport', 2), ('News', 3), (NULL, 4)"),
        SQLITE_DONE);
    EXPECT_EQ(valueOf(connection, "SELECT group_concat(n) FROM t WHERE SEARCH_SCORE(name,'News')>0"), "1,3");
    EXPECT_EQ(valueOf(connection, "SELECT group_concat(search_score(name, name)) FROM t"), "3,3,3,0");
    EXPECT_EQ(valueOf(connection, "SELECT name FROM t ORDER BY SEARCH_SCORE(name, 'news') DESC"), "News");
}

TEST(SearchScoreFunction, NullMatchesNothing) {
    const auto connection = openDatabase();
    EXPECT_EQ(valueOf(connection, "SELECT SEARCH_SCORE(NULL, 'a')"), "0");
    EXPECT_EQ(valueOf(connection, "SELECT SEARCH_SCORE('a', NULL)"), "0");
    EXPECT_EQ(valueOf(connection, "SELECT SEARCH_SCORE('a', '')"), "0");
}

TEST(SearchScoreFunction, TakesNumbersAndBlobsAsTexts) {
    const auto connection = openDatabase();
    EXPECT_EQ(valueOf(connection, "SELECT SEARCH_SCORE(1234, 23)"), "1");
    EXPECT_EQ(valueOf(connection, "SELECT SEARCH_SCORE(x'FF4142', 'ab')"), "2");
}

TEST(SearchScoreFunction, FollowsASearchTextThatChangesFromRowToRow) {
    const auto connection = openDatabase();
    EXPECT_EQ(valueOf(connection,
                      "SELECT group_concat(SEARCH_SCORE('News', column1)) FROM"
                      " (VALUES ('news'), ('sport'), ('new'), ('ws'))"),
              "3,0,2,1");
}

TEST(SearchScoreFunction, EndsSoonOnGiantTextsThatRepeatTheSearch) {
    const auto connection = openDatabase();
    EXPECT_EQ(valueOf(connection,
                      "SELECT SEARCH_SCORE('x' || replace(hex(zeroblob(500000)), '0', 'a'),"
                      " replace(hex(zeroblob(200000)), '0', 'a'))"),
              "1");
}

}  // namespace
}  // namespace epgset
