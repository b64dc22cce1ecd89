// The mirror of the reminder store in a table of the test's own.
#pragma once

#include <bit>
#include <optional>
#include <string>
#include <vector>

#include "set/database/OpenConnections.h"
#include "tests/plugin/AdapterTest.h"
#include "tests/plugin/TableTest.h"
#include "tests/support/TestReminders.h"

namespace epgtest {

constexpr auto Trace = Container::Logger::Trace;

/// A reminder store that hands out a list of entries as it stands.
class ReminderList : public TestReminders {
public:
    bool GetRemindItemByType(int& count, std::vector<CRemindInfo>& items, int kind) override {
        kindsAsked.push_back(kind);
        items = entries;
        count = statedCount.value_or(static_cast<int>(entries.size()));
        return answer;
    }

    std::vector<CRemindInfo> entries;
    std::optional<int> statedCount;  ///< in place of the number of entries
    bool answer = true;
    std::vector<int> kindsAsked;
};

/// Two channels with two programmes each, and a store without entries.
class ScheduleMirrorTest : public TableTest {
protected:
    static constexpr std::uint32_t midnight = 1'787'443'200;  ///< 2026-08-23T00:00:00Z

    ScheduleMirrorTest() {
        TestGuide guide;
        const auto news = guide.channel(Air, 7, 2, "News 24");
        const auto sport = guide.channel(Satellite, 10, 0, "Sport");
        guide.programme(news, midnight, midnight + 3600, "Morning", 1)
            .programme(news, midnight + 3600, midnight + 7200, "Football", 2)
            .programme(sport, midnight, midnight + 3600, "Live", 1)
            .programme(sport, midnight + 3600, midnight + 7200, "Replay", 2);
        guide.use();
        fill();
        log.clear();
    }

    /// A recording of an hour from midnight on channel 7-2, of a programme unless the title is empty; to be
    /// changed at will.
    static CRemindInfo entry(unsigned long uid, int eventId, const std::string& title) {
        CRemindInfo info;
        info.SetUid(uid);
        info.SetEventId(eventId);
        info.SetReserveType(CReminder::RESERVE_RECORD);
        info.SetTitle(unitsOf(title, std::endian::big));
        info.SetStartTime(midnight);
        info.SetDuration(3600);
        info.Set(7, 2, 0, TCChannel::GetDigitalChType(Air), 0);
        return info;
    }

    /// The same on channel 10 of the satellite.
    static CRemindInfo sportEntry(unsigned long uid, int eventId, const std::string& title) {
        CRemindInfo info = entry(uid, eventId, title);
        info.Set(10, 0, 0, TCChannel::GetDigitalChType(Satellite), 0);
        return info;
    }

    /// The same on a channel that there is not.
    static CRemindInfo lostEntry(unsigned long uid, int eventId, const std::string& title) {
        CRemindInfo info = entry(uid, eventId, title);
        info.Set(99, 0, 0, TCChannel::GetDigitalChType(Air), 0);
        return info;
    }

    int clear() const { return OpenPlugin::m_removeDBSchedData(database); }
    int refill() const { return OpenPlugin::m_updateDBSchedData(database); }

    /// Writes the mirror, whatever the table shows.
    void mirror() const { mirror(database); }

    /// The same in another database.
    static void mirror(const Container::SharedPtr<Connection>& connection) {
        OpenPlugin::m_removeDBSchedData(connection);
        OpenPlugin::m_updateDBSchedData(connection);
    }

    /// Rows with a schedule: programme identifier, name, schedule identifier, type and repeat.
    std::vector<Row> schedules() const {
        return rows(
            "SELECT EventId, ProgramName, ScheduleId, ScheduleType, Repeat FROM myView WHERE NOT "
            "ScheduleId='' ORDER BY rowid");
    }

    std::vector<Row> count() const { return rows("SELECT count(*) FROM myView"); }

    bool leavesNoStatement() const { return epgset::openStatementCount() == 0; }

    /// Rows that pruning may take, each with a name of that size in bytes. They start after all others.
    void addPrunable(int number, int bytes = 10) const {
        rows("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n LIMIT " + std::to_string(number) +
             ") INSERT INTO myView (ChannelId, ChannelName, EventId, ProgramStartTime, ScheduleId) SELECT "
             "'cid-prunable', hex(zeroblob(" +
             std::to_string(bytes / 2) + ")), 'pid-' || i, 2000000000 + i, '' FROM n");
    }
    std::vector<Row> prunable() const {
        return rows("SELECT count(*) FROM myView WHERE ChannelId='cid-prunable'");
    }

    ReminderList reminders;
};

}  // namespace epgtest
