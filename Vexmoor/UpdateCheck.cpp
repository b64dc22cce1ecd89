// Keeping the table current: update check, rebuild, pruning.
#include <cstdint>
#include <list>
#include <string>
#include <utility>

#include "Vexmoor/ColumnText.h"
#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "host/AppTV.h"
#include "host/CTimerUtil.h"

namespace {

constexpr std::uint32_t rebuildAge = 600;  // seconds

/// What the guide holds for one reception mode now.
struct ModeCounts {
    int channels = 0;
    int programs = 0;
};

/// Counts a mode. `programCount` is the count of the channel before, across modes too: a channel that
/// cannot be looked up or is analogue repeats it, on purpose.
ModeCounts countMode(int tvmode, int& programCount) {
    ModeCounts counts;
    const ChannelKeyList keys(t_get_cached_channel_key_list(tvmode, &counts.channels));
    if (!keys) return counts;
    for (bool more = keys->Seek(TCObjectSortedList::First, 0); more && keys->Data() != nullptr;
         more = keys->Seek(TCObjectSortedList::Current, 1)) {
        TCChannel channel;
        if (g_pAppTV->ExistChannel(keys->Data(), &channel, 0) != 0 && channel.FlagDigital() != 0) {
            const ProgramList programs(t_get_cached_program_list(&channel, 0, 0));
            programCount = programs ? programs->Size() : 0;
        }
        if (programCount == 0)
            --counts.channels;
        else
            counts.programs += programCount;
    }
    return counts;
}

/// Whether `total` is within a fifth of `stored`, both bounds included.
bool isWithinTolerance(int total, int stored) {
    const auto wide = static_cast<std::int64_t>(stored);
    return total >= wide * 8 / 10 && total <= wide * 12 / 10;
}

}  // namespace

bool EpgSQLPluginVexmoor::checkDB_UpdateNeeded() {
    bool changed = false;
    int programCount = 0;
    for (int i = 0; i < antennaRowCount; ++i) {
        const ModeCounts counts = countMode(antennaTable[i].tvmode, programCount);
        const int storedChannels = channelCounts[i].load(std::memory_order_relaxed);
        const int storedPrograms = programCounts[i].load(std::memory_order_relaxed);
        if (counts.channels == storedChannels && isWithinTolerance(counts.programs, storedPrograms)) {
            if (counts.channels != 0)
                pluginLogger.trace("Channel no change #%d mode : %d, %d --> %d\n", i, storedChannels,
                                   storedPrograms, counts.programs);
            continue;
        }
        pluginLogger.debug("Channel change at #%d mode : %d -> %d, %d --> %d\n", i, storedChannels,
                           counts.channels, storedPrograms, counts.programs);
        // Stored on a change alone: a slow drift is measured from the last change.
        channelCounts[i].store(counts.channels, std::memory_order_relaxed);
        programCounts[i].store(counts.programs, std::memory_order_relaxed);
        changed = true;
    }
    return changed;
}

void EpgSQLPluginVexmoor::rebuildDB(bool force) {
    const Container::ScopedLock lock(rebuildMutex);
    const std::uint32_t now = CTimerUtil::GetCurrentEpochTime();
    pluginLogger.trace("Plug-in last update: %d\n", static_cast<int>(lastUpdateTime));
    if (lastUpdateTime + rebuildAge < now || force) {
        pluginLogger.trace("An update has been triggered\n");
        m_deleteDBTable(GuideTable::name, epgDBConnection);
        m_CreateDBTable(GuideTable::source, GuideTable::schemaTemplate, nullptr, epgDBConnection);
        pluginLogger.debug("Table created\n");
        lastUpdateTime = CTimerUtil::GetCurrentEpochTime();
        pluginLogger.trace("Set Plug-in last update to: %d\n", static_cast<int>(lastUpdateTime));
    }
}

int EpgSQLPluginVexmoor::m_deleteDBTable(const std::string& table, ConnectionPtr connection) {
    const std::string sql = "DROP TABLE " + table + ";";
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(sql);
    pluginLogger.trace("SQL STATEMENT: %s\n", sql);
    statement.compile();
    // Only SQLite's general error counts as one, on purpose.
    if (sqlite3_step(statement.handle()) == SQLITE_ERROR)
        pluginLogger.trace("ERROR!!! unable to delete table\n");
    else
        pluginLogger.trace("table deleted!\n");
    statement.close();
    return 0;
}

void EpgSQLPluginVexmoor::removeLastNProgramEntries(ConnectionPtr connection, int count) {
    Statement first;
    first.setConnection(connection);
    first.setSql(
        "SELECT ChannelId, EventId FROM myView WHERE ScheduleId='' AND NOT ChannelId='' AND NOT EventId='' "
        "AND NOT ChannelName='No_channel_name' ORDER BY ProgramStartTime DESC LIMIT " +
        std::to_string(count) + ";");
    first.compile();
    std::list<std::pair<std::string, std::string>> entries;
    while (sqlite3_step(first.handle()) == SQLITE_ROW)
        entries.emplace_back(columnText(first.handle(), 0), columnText(first.handle(), 1));

    Statement second;
    second.setConnection(connection);
    for (const auto& [channelId, eventId] : entries) {
        const std::string sql = "DELETE FROM myView WHERE ChannelId='" + channelId + "' AND EventId='" +
                                eventId + "' AND ScheduleId='';";
        pluginLogger.trace("DELETE SQL: %s\n", sql);
        second.setSql(sql);
        second.compile();
        const int result = sqlite3_step(second.handle());
        pluginLogger.trace("Attempted to delete a DB entry, result:%d\n", result);
    }
    second.close();

    first.setSql("vacuum;");
    first.compile();
    sqlite3_step(first.handle());
    first.close();
}
