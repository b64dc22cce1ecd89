#include "set/database/StatementText.h"

#include <gtest/gtest.h>

namespace epgset {
namespace {

std::string_view rest(std::string_view sql) {
    return sql.substr(nextStatement(sql));
}

TEST(StatementText, SkipsBlanksCommentsAndSemicolons) {
    EXPECT_EQ(rest(" \t\r\n\f;;SELECT 1; x"), "SELECT 1; x");
    EXPECT_EQ(rest("-- a; b\nSELECT"), "SELECT");
    EXPECT_EQ(rest("/* a; b */ ; /**/SELECT"), "SELECT");
}

TEST(StatementText, FindsNothingBehindTheLastStatement) {
    for (const char* sql : {"", " ", ";", "-- x", "/* x", "/*/", "/* x */", "-- x\n; "})
        EXPECT_EQ(rest(sql), "") << sql;
}

TEST(StatementText, TakesOperatorsForAStatement) {
    EXPECT_EQ(rest(" - 1"), "- 1");
    EXPECT_EQ(rest("/ 1"), "/ 1");
    EXPECT_EQ(rest(std::string_view("\0", 1)).size(), 1u);
}

}  // namespace
}  // namespace epgset
