#include "set/database/DatabaseFaults.h"

#include <gtest/gtest.h>

#include "set/database/DatabaseRequest.h"
#include "set/log/LogCapture.h"
#include "tests/set/database/TestDatabase.h"

namespace epgset {
namespace {

class DatabaseFaults : public testing::Test {
protected:
    bool step(const std::string& sql) {
        Statement statement;
        statement.setConnection(connection);
        statement.setSql(sql);
        statement.compile();
        compiled = statement.handle() != nullptr;
        return statement.step();
    }

    LogCapture capture;
    Container::SharedPtr<Connection> connection = openDatabase();
    bool compiled = false;
};

TEST_F(DatabaseFaults, FailTheNextStepOfAMatchingStatement) {
    const DatabaseFault fault(DatabaseFault::Step, "SELECT 1");
    EXPECT_TRUE(step("SELECT 2"));
    EXPECT_FALSE(step("SELECT 1"));
    EXPECT_TRUE(compiled);
    EXPECT_TRUE(step("SELECT 1"));
}

TEST_F(DatabaseFaults, FailTheNextCompileOfAMatchingStatement) {
    const DatabaseFault fault(DatabaseFault::Compile, "SELECT 1");
    EXPECT_TRUE(step("SELECT 2"));
    EXPECT_FALSE(step("SELECT 1"));
    EXPECT_FALSE(compiled);
    EXPECT_EQ(lastDatabaseError(), "fault set by a test");
    EXPECT_TRUE(step("SELECT 1"));
}

TEST_F(DatabaseFaults, FailFromTheNthOnAsOftenAsAsked) {
    const DatabaseFault fault(DatabaseFault::Step, "SELECT", 2, 3);
    EXPECT_TRUE(step("SELECT 1"));
    for (int time = 0; time < 3; ++time)
        EXPECT_FALSE(step("SELECT 1"));
    EXPECT_TRUE(step("SELECT 1"));
}

TEST_F(DatabaseFaults, EndWithTheirObject) {
    { const DatabaseFault fault(DatabaseFault::Compile, "SELECT"); }
    EXPECT_TRUE(step("SELECT 1"));
}

}  // namespace
}  // namespace epgset
