#include "set/reminders/ReminderSchema.h"

#include <array>

#include "tests/set/reminders/ReminderFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::int64_t number(OwnDatabase& database, const char* query) {
    OwnStatement statement(database, query);
    EXPECT_TRUE(statement.step());
    return statement.integer(0);
}

/// The message of what a function throws; empty when it throws nothing.
template <typename Function>
std::string faultOf(Function&& function) {
    try {
        function();
        return {};
    } catch (const DatabaseError& error) {
        return error.what();
    }
}

/// Three versions of a schema: each step changes what the one before made.
constexpr std::array<const char*, 3> steps{
    "CREATE TABLE reminder (uid INTEGER PRIMARY KEY); INSERT INTO reminder VALUES (1)",
    "ALTER TABLE reminder ADD COLUMN duration INTEGER NOT NULL DEFAULT 60",
    "UPDATE reminder SET duration = duration * 2",
};

class ReminderSchemaTest : public ::testing::Test {
protected:
    std::filesystem::path file() const { return folder_.path() / "a.db"; }

    test::TemporaryFolder folder_;
    OwnDatabase database_{file()};
};

TEST_F(ReminderSchemaTest, IsMadeInAnEmptyFile) {
    migrateReminders(database_, steps);
    EXPECT_EQ(number(database_, "PRAGMA user_version"), 3);
    EXPECT_EQ(number(database_, "SELECT duration FROM reminder"), 120);
}

TEST_F(ReminderSchemaTest, IsBroughtOnStepByStepFromAnOlderVersion) {
    migrateReminders(database_, std::span(steps).first(2));
    database_.run("INSERT INTO reminder VALUES (5, 7)");
    migrateReminders(database_, steps);
    EXPECT_EQ(number(database_, "PRAGMA user_version"), 3);
    EXPECT_EQ(number(database_, "SELECT duration FROM reminder WHERE uid = 5"), 14);
}

TEST_F(ReminderSchemaTest, IsLeftAloneWhenItIsTheLatest) {
    migrateReminders(database_, steps);
    migrateReminders(database_, steps);
    EXPECT_EQ(number(database_, "SELECT duration FROM reminder"), 120);
}

TEST_F(ReminderSchemaTest, StaysAsItWasWhereAStepFails) {
    migrateReminders(database_, std::span(steps).first(1));
    const std::array<const char*, 3> broken{steps[0], steps[1], "no SQL"};
    EXPECT_THAT(faultOf([&] { migrateReminders(database_, broken); }), HasSubstr("a.db: "));
    EXPECT_EQ(number(database_, "PRAGMA user_version"), 1);
    EXPECT_EQ(number(database_, "SELECT count(*) FROM pragma_table_info('reminder')"), 1);
}

TEST_F(ReminderSchemaTest, OfALaterVersionIsRefusedAndStaysAsItIs) {
    database_.run("PRAGMA user_version = 4");
    EXPECT_THAT(faultOf([&] { migrateReminders(database_, steps); }),
                AllOf(HasSubstr("a.db"), HasSubstr("version is 4"), HasSubstr("up to 3")));
    EXPECT_EQ(number(database_, "PRAGMA user_version"), 4);
    EXPECT_EQ(number(database_, "SELECT count(*) FROM sqlite_schema"), 0);
}

TEST_F(ReminderSchemaTest, IsNotMadeInADatabaseOfSomethingElse) {
    database_.run("CREATE TABLE recipes (name TEXT)");
    EXPECT_THAT(faultOf([&] { migrateReminders(database_); }), HasSubstr("something else"));
    EXPECT_EQ(number(database_, "SELECT count(*) FROM sqlite_schema"), 1);
}

TEST_F(ReminderSchemaTest, OfTheStoreIsOfALaterVersionThanItKnows) {
    const auto latest = static_cast<std::int64_t>(reminderSchemaSteps().size());
    ReminderStore(folder_.path() / "store.db");
    OwnDatabase store(folder_.path() / "store.db");
    EXPECT_EQ(number(store, "PRAGMA user_version"), latest);
    store.run(("PRAGMA user_version = " + std::to_string(latest + 1)).c_str());
    EXPECT_THAT(faultOf([&] { ReminderStore(folder_.path() / "store.db"); }),
                HasSubstr("store.db: its version"));
}

TEST_F(ReminderSchemaTest, OfTheStoreKeepsTheEntriesOfItsFirstVersion) {
    const auto path = folder_.path() / "store.db";
    {
        OwnDatabase first(path);
        migrateReminders(first, reminderSchemaSteps().first(1));
        const auto insert = [&](int uid, int reserveType, const char* title) {
            first.run(("INSERT INTO reminder VALUES (" + std::to_string(uid) + ", 2, 7, 0, 0, 1, 17, " +
                       std::to_string(reserveType) + ", 0, 0, 0, 2000000, NULL, 100, '" + title + "', 's')")
                          .c_str());
        };
        insert(4, CReminder::RESERVE_VIEW, "View");
        insert(5, CReminder::RESERVE_RECORDING, "Runs");
        insert(6, CReminder::RESERVE_SERIES, "Series");
    }
    const ReminderStore store(path);
    EXPECT_EQ(store.find(4)->info.ReserveType(), CReminder::RESERVE_VIEW);
    EXPECT_EQ(store.find(4)->series, SeriesPlace::None);
    EXPECT_EQ(store.find(5)->info.ReserveType(), CReminder::RESERVE_RECORD);
    EXPECT_EQ(store.find(6)->series, SeriesPlace::Chosen);
    EXPECT_EQ(store.find(6)->seriesTitle, "Series");
    EXPECT_EQ(store.find(6)->start, 2'000'000);
}

}  // namespace
}  // namespace epgset
