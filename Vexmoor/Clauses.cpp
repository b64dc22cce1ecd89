// The clauses of a list query: query parameters as pieces of one SELECT statement.
//
// Client values are put between single quotes as they come, on purpose.
#include <list>
#include <map>
#include <new>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"

namespace {

bool contains(const std::string& value, const char* text) {
    return value.find(text) != std::string::npos;
}

/// Whether the first "name" of the value stands for the view's own name: not after "_".
bool hasOwnName(const std::string& value) {
    const std::size_t position = value.find("name");
    return position != std::string::npos && (position == 0 || value[position - 1] != '_');
}

std::string joined(const std::list<std::string>& columns) {
    std::string text;
    for (const std::string& column : columns) {
        if (!text.empty()) text += ", ";
        text += column;
    }
    return text;
}

/// The condition column of a parameter under a view; null for one that makes no condition.
const char* conditionColumn(const std::string& parameter, int view) {
    struct Row {
        const char* parameter;
        int view;  ///< 0: any
        const char* column;
    };
    static constexpr Row rows[] = {
        {"name", ChannelView, "ChannelName"},
        {"program_name", ChannelView, "ProgramName"},
        {"channel_name", ProgramView, "ChannelName"},
        {"name", ProgramView, "ProgramName"},
        {"channel_num", 0, "ChannelNumber"},
        {"antenna", 0, "AntennaType"},
        {"scrambled", 0, "ScrambledFlag"},
        {"service_type", 0, "ServiceType"},
        {"start", 0, "ProgramStartTime"},
        {"end", 0, "ProgramEndTime"},
    };
    for (const Row& row : rows)
        if (parameter == row.parameter && (row.view == 0 || row.view == view)) return row.column;
    return nullptr;
}

/// One term of the WHERE clause, ended by a blank.
std::string conditionTerm(const std::string& column, const std::string& value) {
    if (column == "ChannelName" || column == "ProgramName")
        return "SEARCH_SCORE(" + column + ",'" + value + "')>0 ";
    const char* comparison = column == "ProgramStartTime" ? ">='" : column == "ProgramEndTime" ? "<='" : "='";
    return column + comparison + value + "' ";
}

}  // namespace

void EpgSQLPluginVexmoor::m_getColNamesFrmQueryParam(const std::string& value,
                                                     std::list<std::string>& columns, int view) {
    if (contains(value, "id")) {
        if (view == ChannelView) columns.emplace_back("ChannelId");
        if (view == ProgramView) columns.emplace_back("EventId");
    }
    if (hasOwnName(value)) {
        if (view == ChannelView) columns.emplace_back("ChannelName");
        if (view == ProgramView) columns.emplace_back("ProgramName");
    }
    if (contains(value, "channel_name")) columns.emplace_back("ChannelName");
    if (contains(value, "channel_num")) columns.emplace_back("ChannelNumber");
    if (contains(value, "antenna")) columns.emplace_back("AntennaType");
    if (contains(value, "scrambled")) columns.emplace_back("ScrambledFlag");
    if (contains(value, "service_type")) columns.emplace_back("ServiceType");
    if (contains(value, "program_name")) columns.emplace_back("ProgramName");
    if (contains(value, "start")) columns.emplace_back("ProgramStartTime");
    if (contains(value, "end")) columns.emplace_back("ProgramEndTime");
}

int EpgSQLPluginVexmoor::m_getSqlSelectCols(std::string& sql, const ParameterMap& parameters, int view) {
    sql += "SELECT ";
    const auto select = parameters.find("select");
    if (select != parameters.end()) {
        std::list<std::string> columns;
        try {
            m_getColNamesFrmQueryParam(select->second, columns, view);
        } catch (const std::bad_alloc&) {
            return -1;
        }
        sql += joined(columns);
        return ChosenColumns;
    }
    if (view == ChannelView) {
        sql +=
            " ChannelId, ChannelName, ChannelNumber, ChannelPath, AntennaType, ScrambledFlag, ServiceType ";
        return DefaultChannelColumns;
    }
    if (view == ProgramView) {
        sql +=
            " EventId, ProgramName, ChannelPath, ChannelName, ChannelNumber, AntennaType, ProgramStartTime, "
            "ProgramEndTime, ScrambledFlag";
        return DefaultProgramColumns;
    }
    sql += " * ";
    return AllColumns;
}

int EpgSQLPluginVexmoor::m_getWhereConditions(std::map<std::string, std::string>& conditions,
                                              const ParameterMap& parameters, int view) {
    for (const auto& [name, value] : parameters) {
        const char* column = conditionColumn(name, view);
        if (column == nullptr) continue;
        if (name == "start" || name == "end") {
            const long long time = t_get_UNIX_from_ISO8601(value.c_str());
            pluginLogger.trace(name == "start" ? "WHERE Start int time: %d" : "WHERE end int time: %d",
                               static_cast<int>(time));
            conditions[column] = std::to_string(time);
        } else {
            conditions[column] = value;
        }
    }
    return 0;
}

int EpgSQLPluginVexmoor::m_getSqlWhereConditions(std::string& sql, const ParameterMap& parameters, int view) {
    std::map<std::string, std::string> conditions;
    m_getWhereConditions(conditions, parameters, view);
    if (conditions.empty()) return 1;
    sql += " WHERE ";
    std::size_t left = conditions.size();
    for (const auto& [column, value] : conditions) {
        sql += conditionTerm(column, value);
        if (--left != 0) sql += "AND ";
    }
    return 0;
}

int EpgSQLPluginVexmoor::m_getSqlSortConditions(std::string& sql, const ParameterMap& parameters, int view) {
    const auto sort = parameters.find("sort");
    if (sort != parameters.end()) {
        std::list<std::string> columns;
        try {
            m_getColNamesFrmQueryParam(sort->second, columns, view);
        } catch (const std::bad_alloc&) {
            return -1;
        }
        if (columns.size() == 1) sql += " ORDER BY " + columns.front();
    }
    // Without a sort the direction stands alone, and the statement does not compile; it stays so.
    const auto order = parameters.find("sort_order");
    if (order != parameters.end()) {
        if (order->second == "ascend")
            sql += " ASC";
        else if (order->second == "descend")
            sql += " DESC";
        else
            sql += " " + order->second;
    }
    return 0;
}
