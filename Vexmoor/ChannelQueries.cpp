// The channel resources: the list, one channel, and whether a channel exists.
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"

int EpgSQLPluginVexmoor::m_execChnlListSqlQuery(TARNO_rstr_uri_query_st* query, void* document,
                                                const char* method, ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    const ParameterMap parameters = m_copyQueryParams(query);
    std::string itemsMax;
    std::string startIndex;
    if (!m_getPagingParams(parameters, itemsMax, startIndex)) return 400;

    std::string sql;
    const int selectKind = m_getSqlSelectCols(sql, parameters, ChannelView);
    sql += " FROM myView";
    const bool hasCondition = m_getSqlWhereConditions(sql, parameters, ChannelView) == 0;
    sql += hasCondition ? " AND" : " WHERE";
    sql += " ScheduleId='' AND NOT ServiceType='' AND NOT AntennaType='' GROUP BY ChannelId ";
    m_getSqlSortConditions(sql, parameters, ChannelView);
    sql += ";";
    return m_getChnlListResults(sql, document, itemsMax, startIndex, selectKind, connection);
}

int EpgSQLPluginVexmoor::m_execChnlInfoSqlQuery(const char* channelId, void* document, const char* method,
                                                ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    const std::string sql =
        "SELECT ChannelId, ChannelName, ChannelPath, ChannelNumber, AntennaType, ScrambledFlag, ServiceType "
        "FROM myView WHERE ChannelId='" +
        std::string(channelId) + "' GROUP BY ChannelId;";
    pluginLogger.debug("selectSql statement\n");
    return m_getChnlInfoResults(sql, document, connection);
}

int EpgSQLPluginVexmoor::m_getChnlInfoResults(std::string sql, void* document, ConnectionPtr connection) {
    return m_writeFirstRow(sql, ChannelView, document, connection);
}

int EpgSQLPluginVexmoor::m_checkForChannelInDB(const char* channelId, ConnectionPtr connection) {
    const bool found = m_hasRow(
        "SELECT ChannelId From myView WHERE ChannelId='" + std::string(channelId) + "';", connection);
    pluginLogger.trace(found ? "Channel exists in DB!\n" : "Channel does not exists in DB!\n");
    return found ? 0 : -1;
}
