// The import: makes the table and fills it from the middleware's guide.
#include <algorithm>
#include <cstdint>
#include <list>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/HeapText.h"
#include "Vexmoor/ImportBatch.h"
#include "host/AppTV.h"
#include "host/CTimerUtil.h"

namespace {

constexpr std::uint32_t importHorizon = 604800;  // seven days

/// UNIX seconds of a record's time text, as the 32 bits that the table holds; -1 for no text.
std::int32_t secondsOf(const char* iso8601) {
    return static_cast<std::int32_t>(t_get_UNIX_from_ISO8601(iso8601));
}

const char* scrambledText(const TCChannel& channel) {
    return channel.FlagScrambled() != 0 ? "true" : "false";
}

/// Whether a column's value comes from the channel or the programme record.
bool isGuideColumn(ColumnCode code) {
    return code >= ColumnCode::ChannelId && code <= ColumnCode::ProgramEndTime;
}

/// Replaces `value` by the text of a guide column, when its source has one. Name, number, path and antenna
/// are read from the record, which has them from the channel by the same functions.
void readColumn(ColumnCode code, TCChannel* channel, const ws_epg_program* record, std::string& value) {
    const auto take = [&value](char* heapText) {
        const HeapText text(heapText);
        if (text) value = text.get();
    };
    const auto copy = [&value](const char* text) {
        if (text != nullptr) value = text;
    };
    switch (code) {
        case ColumnCode::ChannelId:
            return take(t_get_channel_id(channel->TvMode(), channel->Major(), channel->Minor()));
        case ColumnCode::ChannelName:
            return copy(record->channel_name);
        case ColumnCode::ChannelNumber:
            return copy(record->channel_num);
        case ColumnCode::ChannelPath:
            return copy(record->source_path);
        case ColumnCode::AntennaType:
            return copy(record->antenna);
        case ColumnCode::ScrambledFlag:
            return copy(scrambledText(*channel));
        case ColumnCode::ServiceType:
            return take(t_get_channel_service_type(channel));
        case ColumnCode::EventId:
            return copy(record->program_id);
        case ColumnCode::ProgramName:
            return copy(record->name);
        case ColumnCode::ProgramStartTime:
            value = std::to_string(secondsOf(record->start));
            return;
        case ColumnCode::ProgramEndTime:
            value = std::to_string(secondsOf(record->end));
            return;
        default:
            return;
    }
}

/// A text of a stub row, escaped; empty when the source has none.
template <typename Escape>
std::string stubText(char* heapText, Escape escape) {
    const HeapText text(heapText);
    std::string value = text ? text.get() : "";
    escape(value);
    return value;
}

}  // namespace

int EpgSQLPluginVexmoor::m_CreateDBTable(const std::string& source, const std::string& templateText,
                                         TARNO_rstr_uri_query_st* query, ConnectionPtr connection) {
    if (source != GuideTable::source) return -1;
    std::string sql;
    m_createTblFrmEpg(templateText, sql, connection);
    std::string table;
    m_getViewNameFrmSql(templateText, table);
    epgTableList[table] = templateText;
    pluginLogger.debug("Create tbl sql: %s\n", sql);
    runOrRaise(sql, connection);
    m_parseEpgData(templateText, table, connection, query);
    m_createIndexes(connection);
    return 0;
}

int EpgSQLPluginVexmoor::m_createTblFrmEpg(const std::string& templateText, std::string& sql,
                                           ConnectionPtr /*connection*/) {
    std::string table;
    m_getViewNameFrmSql(templateText, table);
    m_getCreateTblSql(templateText, sql, table);
    return 0;
}

int EpgSQLPluginVexmoor::m_parseEpgData(const std::string& templateText, std::string& table,
                                        ConnectionPtr connection, TARNO_rstr_uri_query_st* /*query*/) {
    pluginLogger.debug("Start of m_retrieveEpgData, looping through channels...\n");
    const ImportBatch batch(connection);
    std::string columns = templateText;
    std::vector<int> codes;
    m_extractColsFrmQueryInt(columns, &codes);
    int programCount = 0;

    for (const AntennaRow& row : antennaTable) {
        int keyCount = 0;
        const ChannelKeyList keys(t_get_cached_channel_key_list(row.tvmode, &keyCount));
        if (!keys) continue;
        for (bool more = keys->Seek(TCObjectSortedList::First, 0); more && keys->Data() != nullptr;
             more = keys->Seek(TCObjectSortedList::Current, 1)) {
            const std::unique_ptr<TCChannel> channel(new (std::nothrow) TCChannel());
            if (!channel) return 0;  // the import ends quietly; the rows written so far stay
            if (g_pAppTV->ExistChannel(keys->Data(), channel.get(), 0) == 0 || channel->FlagDigital() == 0) {
                pluginLogger.error(noDigitalChannelMessage);
                continue;
            }
            const ProgramList programs(t_get_cached_program_list(channel.get(), 0, 0));
            if (!programs || !programs->Seek(CCSortedList::First, 0) || programs->Data() == nullptr) {
                m_insertFakeProgram(channel.get(), connection);
                continue;
            }
            do {
                const ProgramRecord record(t_create_program(channel.get(), programs->Data()));
                if (!record) return 0;
                m_getDataFromEpgCacheFAST(&codes, table, channel.get(), record.get(), programs->Data(),
                                          connection);
                ++programCount;
                programs->Delete();
            } while (programs->Seek(CCSortedList::Current, 1) && programs->Data() != nullptr);
        }
        pluginLogger.debug("End of retrieveEpgData\n");
    }
    pluginLogger.debug("\n*** Number of programs parsed: %d\n", programCount);
    return 0;
}

void EpgSQLPluginVexmoor::m_getDataFromEpgCacheFAST(std::vector<int>* codes, std::string& table,
                                                    TCChannel* channel, ws_epg_program* record,
                                                    TCProgram* program, ConnectionPtr connection) {
    std::list<std::string> values;
    // One text for all columns, on purpose: where a source has none, the value before stands again,
    // escaped once more.
    std::string value;
    CRemindInfo info;
    CReminder* reminder = CReminder::GetInstance();
    const bool found = reminder != nullptr && reminder->FindRemindItemFromProgram(*program, info);

    for (const int code : *codes) {
        if (isGuideColumn(ColumnCode{code})) {
            readColumn(ColumnCode{code}, channel, record, value);
            m_addItemsToInsertSql(&values, value);
        }
        m_getSchedDataFromEpgCache(code, &values, found, &info);
        if (ColumnCode{code} == ColumnCode::ProgramCRID) {
            std::string crids;
            m_getCRIDsForPrgm(program, crids);
            m_addItemsToInsertSql(&values, crids);
        }
    }

    const std::int32_t start = secondsOf(record->start);
    const auto horizon = static_cast<std::int32_t>(CTimerUtil::GetCurrentEpochTime() + importHorizon);
    if (start > horizon) return;
    std::string sql;
    m_getInsertSql(&values, sql, table);
    ImportBatch::run(sql, connection);
}

void EpgSQLPluginVexmoor::m_getSchedDataFromEpgCache(int code, std::list<std::string>* values, bool found,
                                                     CRemindInfo* info) {
    const ColumnCode column{code};
    if (column < ColumnCode::ScheduleId || column > ColumnCode::Repeat) return;
    std::string value;
    if (found) {
        const HeapText text(column == ColumnCode::ScheduleId ? t_get_schedule_id(info)
                            : column == ColumnCode::ScheduleType
                                ? t_get_schedule_status_str(info->ReserveType())
                                : t_get_schedule_repeat(info));
        if (text) value = text.get();
    }
    m_addItemsToInsertSql(values, value);
}

void EpgSQLPluginVexmoor::m_insertFakeProgram(TCChannel* channel, ConnectionPtr connection) {
    const auto escaped = [](char* text) { return stubText(text, m_replaceSingleQuotes); };
    const std::string id = escaped(t_get_channel_id(channel->TvMode(), channel->Major(), channel->Minor()));
    const std::string name = escaped(t_get_channel_name(channel));
    const std::string number = escaped(t_get_channel_num(channel));
    const std::string path = escaped(t_get_channel_path(channel));
    const std::string antenna = escaped(t_get_name_from_tvmode(channel->TvMode()));
    const std::string serviceType = escaped(t_get_channel_service_type(channel));
    ImportBatch::run(
        "INSERT INTO myView (ChannelId, ChannelNumber, ChannelName, ChannelPath, ServiceType, AntennaType, "
        "ScrambledFlag, EventId, ProgramName, ProgramStartTime, ProgramEndTime,ScheduleId, ScheduleType, "
        "Repeat) VALUES ('" +
            id + "','" + number + "','" + name + "','" + path + "','" + serviceType + "','" + antenna +
            "','" + scrambledText(*channel) + "','','No information','','','','','');",
        connection);
}

int EpgSQLPluginVexmoor::m_getCRIDsForPrgm(TCProgram* program, std::string& text) {
    std::vector<std::string> crids;
    program->GetCRIDs(crids, 0);
    std::sort(crids.begin(), crids.end());
    text.clear();
    for (const std::string& crid : crids) {
        if (&crid != &crids.front()) text += ", ";
        text += crid;
    }
    return 0;
}
