#include <sys/stat.h>

#include <fstream>

#include "tests/set/reminders/ReminderFixture.h"

namespace epgset {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::string pragma(sqlite3* database, const char* name) {
    std::string value;
    sqlite3_exec(
        database, (std::string("PRAGMA ") + name).c_str(),
        [](void* text, int, char** values, char**) {
            *static_cast<std::string*>(text) = values[0];
            return 0;
        },
        &value, nullptr);
    return value;
}

class ReminderFileTest : public ReminderFixture {
protected:
    /// From now on the file takes no further page, as on a full disk, until room() is called.
    void fillDisk() {
        const std::string pages = pragma(handle(), "page_count");
        pragma(handle(), ("max_page_count = " + pages).c_str());
    }
    void room() { pragma(handle(), "max_page_count = 1000000"); }

    /// From now on the file cannot be written, as on a read-only disk.
    void protect() { pragma(handle(), "query_only = ON"); }

    sqlite3* handle() { return store().file().handle(); }

    static CRemindInfo longEntry(std::uint32_t start) {
        CRemindInfo info = manualEntry(start, 60);
        info.SetSynopsis(CRemindInfo::Text(20'000, 'x'));
        return info;
    }
};

TEST_F(ReminderFileTest, HasAWriteAheadLogAndSynchronisesFully) {
    EXPECT_EQ(pragma(handle(), "journal_mode"), "wal");
    EXPECT_EQ(pragma(handle(), "synchronous"), "2");
}

TEST_F(ReminderFileTest, RefusesAnEntryOnAFullDiskAndKeepsTheEarlierOnes) {
    const unsigned long uid = add(manualEntry(2'000'000, 60));
    fillDisk();
    CRemindInfo info = longEntry(3'000'000);
    EXPECT_FALSE(store().AddRemindItem(info, 0));
    EXPECT_EQ(info.UID(), 0U);
    EXPECT_THAT(uidsOf(all()), ElementsAre(uid));
    EXPECT_THAT(log_.messagesOf("set/reminders", Container::Logger::Error),
                ElementsAre(AllOf(HasSubstr(file().string()), HasSubstr("full"))));
    room();
    EXPECT_NE(add(longEntry(3'000'000)), 0U);
    open();
    EXPECT_THAT(all(), SizeIs(2));
}

TEST_F(ReminderFileTest, ChangesNothingThatCannotBeWritten) {
    const unsigned long uid = add(manualEntry(2'000'000, 60));
    protect();
    EXPECT_EQ(add(manualEntry(3'000'000, 60)), 0U);
    EXPECT_FALSE(store().UpdateRemindItemByUid(uid, manualEntry(4'000'000, 60), 0, 1));
    EXPECT_EQ(store().DeleteRemindItemByUid(uid), 0);
    EXPECT_EQ(store().UserDeleteRemindItemByUid(uid), 0);
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000U);
    EXPECT_THAT(log_.messagesOf("set/reminders", Container::Logger::Error), SizeIs(4));
    open();
    EXPECT_EQ(entry(uid).StartTime(), 2'000'000U);
}

TEST_F(ReminderFileTest, SaysOnceThatWhatHasEndedCannotBeRemoved) {
    add(manualEntry(2'000'000, 60));
    protect();
    EXPECT_FALSE(store().removeEnded(3'000'000));
    EXPECT_FALSE(store().removeEnded(3'000'001));
    EXPECT_THAT(all(), SizeIs(1));
    EXPECT_THAT(log_.messagesOf("set/reminders", Container::Logger::Error), SizeIs(1));
    pragma(handle(), "query_only = OFF");
    EXPECT_TRUE(store().removeEnded(3'000'002));
    EXPECT_THAT(all(), IsEmpty());
}

TEST_F(ReminderFileTest, SaysThatAnEndOfARecordingCannotBeWrittenAndShowsItAsEndedAllTheSame) {
    CRemindInfo info = manualEntry(2'000'000, 60);
    info.SetTitle({0x4100});
    const unsigned long uid = add(info);
    protect();
    store().recordingBegan(uid, 2'000'000);
    EXPECT_EQ(entry(uid).ReserveType(), CReminder::RESERVE_RECORDING);
    EXPECT_FALSE(store().endOccurrence(uid, 2'000'000));
    EXPECT_EQ(entry(uid).ReserveType(), CReminder::RESERVE_RECORD);
    EXPECT_THAT(log_.messagesOf("set/reminders", Container::Logger::Error), SizeIs(2));
}

TEST_F(ReminderFileTest, CannotBeOpenedWhenItIsNoDatabase) {
    const auto path = folder_.write("text.db", std::string(4096, 'x'));
    try {
        ReminderStore other(path);
        FAIL() << "opened";
    } catch (const DatabaseError& error) {
        EXPECT_THAT(error.what(), AllOf(HasSubstr(path.string()), HasSubstr("not a database")));
    }
}

TEST_F(ReminderFileTest, CannotBeOpenedInAFolderThatIsNotThere) {
    EXPECT_THROW(ReminderStore(folder_.path() / "none" / "reminders.db"), DatabaseError);
}

TEST_F(ReminderFileTest, CannotBeOpenedWhereItIsAFolder) {
    EXPECT_THROW(ReminderStore{folder_.path()}, DatabaseError);
}

}  // namespace
}  // namespace epgset
