// SQL texts of the import: what the schema template describes, as CREATE and INSERT statements.
#include <algorithm>
#include <cstddef>
#include <ctime>
#include <list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoor.h"

namespace {

constexpr std::size_t longestName = 32;

struct Column {
    const char* name;
    ColumnCode code;
    bool isTime;
    const char* definition;
};

/// The columns that a template may name, in the order in which they are searched for and listed.
constexpr Column columns[] = {
    {"ChannelId", ColumnCode::ChannelId, false, "ChannelId varchar(32)"},
    {"ChannelName", ColumnCode::ChannelName, false, "ChannelName varchar(255)"},
    {"ChannelPath", ColumnCode::ChannelPath, false, "ChannelPath varchar(255)"},
    {"ChannelNumber", ColumnCode::ChannelNumber, false, "ChannelNumber varchar(255)"},
    {"AntennaType", ColumnCode::AntennaType, false, "AntennaType varchar(32)"},
    {"ScrambledFlag", ColumnCode::ScrambledFlag, false, "ScrambledFlag varchar(5)"},
    {"ServiceType", ColumnCode::ServiceType, false, "ServiceType varchar(10)"},
    {"ThumbURI", ColumnCode::None, false, "ThumbURI varchar(255)"},
    {"EventId", ColumnCode::EventId, false, "EventId varchar(32)"},
    {"ProgramName", ColumnCode::ProgramName, false, "ProgramName varchar(255)"},
    {"ProgramSynopsis", ColumnCode::None, false, "ProgramSynopsis varchar(1)"},
    {"ProgramStartTime", ColumnCode::ProgramStartTime, true, "ProgramStartTime INTEGER UNSIGNED"},
    {"ProgramEndTime", ColumnCode::ProgramEndTime, true, "ProgramEndTime INTEGER UNSIGNED"},
    {"ScheduleId", ColumnCode::ScheduleId, false, "ScheduleId varchar(32)"},
    {"ScheduleType", ColumnCode::ScheduleType, false, "ScheduleType varchar(32)"},
    {"Repeat", ColumnCode::Repeat, false, "Repeat varchar(32)"},
    {"ProgramCRID", ColumnCode::ProgramCRID, false, "ProgramCRID varchar(255)"},
};

/// Whether the text names the column. A time column that "=" follows is part of a condition and does
/// not count.
bool names(const std::string& query, const Column& column) {
    const std::string name = column.name;
    const std::size_t position = query.find(name);
    if (position == std::string::npos) return false;
    const std::size_t after = position + name.size();
    return !(column.isTime && after < query.size() && query[after] == '=');
}

/// The definition of a column; empty for a name without one.
const char* definitionOf(const std::string& name) {
    for (const Column& column : columns)
        if (name == column.name) return column.definition;
    return "";
}

/// Hands the named columns to `take`; after "AS SELECT * " all of them once more, doubled on purpose.
template <typename Take>
void extractColumns(const std::string& query, Take take) {
    for (const Column& column : columns)
        if (names(query, column)) take(column);
    if (query.find("AS SELECT * ") == std::string::npos) return;
    for (const Column& column : columns)
        take(column);
}

/// Appends the word after `keyword`: up to the next blank or, when there is none, the next ";".
void appendNameAfter(const std::string& sql, const std::string& keyword, std::string& name) {
    const std::size_t found = sql.find(keyword);
    if (found == std::string::npos) return;
    const std::size_t start = found + keyword.size() + 1;
    if (start > sql.size()) return;
    std::size_t end = sql.find(' ', start);
    if (end == std::string::npos) end = sql.find(';', start);
    if (end == std::string::npos) return;
    name += sql.substr(start, end - start).substr(0, longestName);
}

/// Appends the text between `prefix` and the next "'", at most 32 characters; -1 without the prefix.
int appendTimeAfter(const std::string& sql, const std::string& prefix, std::string& time) {
    const std::size_t found = sql.find(prefix);
    if (found == std::string::npos) return -1;
    const std::size_t start = found + prefix.size();
    const std::size_t end = sql.find('\'', start);
    time += sql.substr(start, end == std::string::npos ? end : end - start).substr(0, longestName);
    return 0;
}

}  // namespace

void EpgSQLPluginVexmoor::m_extractColsFrmQuery(std::string& query, std::list<std::string>* list) {
    extractColumns(query, [list](const Column& column) { list->push_back(column.name); });
}

void EpgSQLPluginVexmoor::m_extractColsFrmQueryInt(std::string& query, std::vector<int>* codes) {
    extractColumns(query, [codes](const Column& column) {
        if (column.code != ColumnCode::None) codes->push_back(static_cast<int>(column.code));
    });
}

void EpgSQLPluginVexmoor::m_getCreateTblSql(std::string templateText, std::string& sql, std::string& table) {
    std::list<std::string> names;
    m_extractColsFrmQuery(templateText, &names);
    std::list<std::string> definitions;
    for (const std::string& name : names)
        definitions.emplace_back(definitionOf(name));
    m_formatCreateSql(definitions, sql, table);
}

void EpgSQLPluginVexmoor::m_formatCreateSql(std::list<std::string>& definitions, std::string& sql,
                                            std::string& table) {
    sql += "CREATE TABLE " + table + " (";
    std::size_t left = definitions.size();
    for (const std::string& definition : definitions) {
        sql += definition;
        sql += --left != 0 ? ", " : ");";
    }
}

void EpgSQLPluginVexmoor::m_getInsertSql(std::list<std::string>* values, std::string& sql,
                                         std::string& table) {
    std::size_t length = sql.size() + table.size() + 32;
    for (const std::string& value : *values)
        length += value.size() + 4;
    sql.reserve(length);
    sql.append("INSERT INTO ").append(table).append(" values(");
    std::size_t left = values->size();
    for (const std::string& value : *values) {
        sql += '\'';
        sql += value;
        sql += --left != 0 ? "', " : "');";
    }
}

void EpgSQLPluginVexmoor::m_addItemsToInsertSql(std::list<std::string>* values, std::string& value) {
    m_replaceSingleQuotes(value);  // in place: the caller's text is left escaped
    values->push_back(value);
}

void EpgSQLPluginVexmoor::m_replaceSingleQuotes(std::string& text) {
    const auto quotes = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\''));
    if (quotes == 0) return;
    std::string doubled;
    doubled.reserve(text.size() + quotes);
    for (const char character : text)
        doubled.append(character == '\'' ? 2 : 1, character);
    text = std::move(doubled);
}

void EpgSQLPluginVexmoor::m_getViewNameFrmSql(const std::string& sql, std::string& name) {
    appendNameAfter(sql, "VIEW", name);
}

void EpgSQLPluginVexmoor::m_getTableNameFrmSql(const std::string& sql, std::string& name) {
    appendNameAfter(sql, "FROM", name);
}

bool EpgSQLPluginVexmoor::m_TableCreated(std::string& table, std::map<std::string, std::string>& tables) {
    const auto found = tables.find(table);
    return found != tables.end() && !found->second.empty();
}

int EpgSQLPluginVexmoor::m_getIntFrmDateTimeString(const std::string& text) {
    std::tm parts = {};
    strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &parts);
    char compact[32];
    std::strftime(compact, sizeof compact, "%Y%m%dT%H%M%S", &parts);  // not used by anybody
    return static_cast<int>(std::mktime(&parts));
}

int EpgSQLPluginVexmoor::m_getPrgStartTimeFrmSql(const std::string& sql, std::string& time) {
    return appendTimeAfter(sql, "ProgramStartTime='", time);
}

int EpgSQLPluginVexmoor::m_getPrgEndTimeFrmSql(const std::string& sql, std::string& time) {
    return appendTimeAfter(sql, "ProgramEndTime='", time);
}

bool EpgSQLPluginVexmoor::m_isProgramTimeInQueryRange(int start, int end, int rangeStart, int rangeEnd) {
    return start >= rangeStart && end <= rangeEnd;
}
