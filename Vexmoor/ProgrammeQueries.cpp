// The programme resources: the lists, one programme, its detail, and whether a programme exists.
#include <cstring>
#include <memory>
#include <string>

#include "Vexmoor/ColumnText.h"
#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/HeapText.h"
#include "host/ResponseDocument.h"

char EpgSQLPluginVexmoor::programWithoutSynopsis[] = "NONE";

int EpgSQLPluginVexmoor::m_execPrgmListSqlQuery(TARNO_rstr_uri_query_st* query, void* document,
                                                const char* method, ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    const ParameterMap parameters = m_copyQueryParams(query);
    std::string itemsMax;
    std::string startIndex;
    if (!m_getPagingParams(parameters, itemsMax, startIndex)) return 400;

    std::string sql;
    const int selectKind = m_getSqlSelectCols(sql, parameters, ProgramView);
    sql += " FROM myView";
    const bool hasCondition = m_getSqlWhereConditions(sql, parameters, ProgramView) == 0;
    sql += hasCondition ? " AND" : " WHERE";
    sql += " NOT ProgramName='channel_stub' ";
    m_getSqlSortConditions(sql, parameters, ProgramView);
    sql += ";";
    return m_getPrgmListResults(sql, document, itemsMax, startIndex, selectKind, connection);
}

int EpgSQLPluginVexmoor::m_execPrgmListForChnlSqlQuery(const char* channelId, TARNO_rstr_uri_query_st* query,
                                                       void* document, const char* method,
                                                       ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    if (m_checkForChannelInDB(channelId, connection) != 0) return 404;
    const ParameterMap parameters = m_copyQueryParams(query);
    std::string itemsMax;
    std::string startIndex;
    if (!m_getPagingParams(parameters, itemsMax, startIndex)) return 400;

    std::string sql;
    const int selectKind = m_getSqlSelectCols(sql, parameters, ProgramView);
    sql += " FROM myView";
    const bool hasCondition = m_getSqlWhereConditions(sql, parameters, ProgramView) == 0;
    const std::string channel = "ChannelId='" + std::string(channelId) + "'";
    // Two blanks before the AND of the first form, on purpose.
    sql += hasCondition ? " AND " + channel + " AND" : " WHERE " + channel + "  AND";
    sql += " NOT ProgramName='channel_stub' ";
    m_getSqlSortConditions(sql, parameters, ProgramView);
    sql += ";";
    return m_getPrgmListForChnlResults(sql, document, itemsMax, startIndex, selectKind, connection);
}

int EpgSQLPluginVexmoor::m_execPrgmInfoSqlQuery(const char* programId, void* document, const char* method,
                                                ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    const std::string sql =
        "SELECT EventId, ProgramName, ChannelId, ChannelPath, ChannelName, ChannelNumber, AntennaType, "
        "ProgramStartTime, ProgramEndTime, ScrambledFlag FROM myView WHERE EventId='" +
        std::string(programId) + "';";
    pluginLogger.debug("selectSql statement\n");
    return m_getPrgmInfoResults(sql, programId, document, connection);
}

int EpgSQLPluginVexmoor::m_getPrgmInfoResults(std::string sql, const char* /*programId*/, void* document,
                                              ConnectionPtr connection) {
    return m_writeFirstRow(sql, ProgramView, document, connection);
}

int EpgSQLPluginVexmoor::m_getPrgmDetailQuery(const char* programId, void* document, const char* method,
                                              ConnectionPtr connection) {
    if (!m_isGet(method)) return 404;
    pluginLogger.trace("Getting program synopsis\n");
    char* const synopsis = m_getPrgmSynopsis(programId, connection);
    const HeapText owned(synopsis == programWithoutSynopsis ? nullptr : synopsis);
    if (synopsis == nullptr || std::strcmp(synopsis, programWithoutSynopsis) == 0) return 404;
    TARNO_rdoc_add_UTF8(document, "synopsis", synopsis);
    TARNO_rdoc_add_UTF8(document, "screenShotURL", placeholderUrl);
    TARNO_rdoc_add_UTF8(document, "linkURL", placeholderUrl);
    return 200;
}

char* EpgSQLPluginVexmoor::m_getPrgmSynopsis(const char* programId, ConnectionPtr connection) {
    const std::string sql = "SELECT ChannelId FROM myView WHERE EventId='" + std::string(programId) + "'";
    Statement statement;
    statement.setConnection(connection);
    pluginLogger.trace("SQL query set as: %s", sql);
    statement.setSql(sql);
    statement.compile();
    if (sqlite3_step(statement.handle()) != SQLITE_ROW) {
        statement.close();
        return programWithoutSynopsis;
    }
    const std::string channelId = columnText(statement.handle(), 0);
    pluginLogger.trace("ChannelID val: %s\n", channelId);
    pluginLogger.trace("Creating channel object\n");
    const std::unique_ptr<TCChannel> channel(t_get_cached_channel_by_id(channelId.c_str()));
    if (!channel) {
        statement.close();
        return programWithoutSynopsis;
    }
    pluginLogger.trace("Channel pointer is not null\n");
    TCChannel* programChannel = nullptr;
    const std::unique_ptr<TCProgram> program(t_get_cached_program_by_id(programId, &programChannel));
    const std::unique_ptr<TCChannel> ownedChannel(programChannel);
    pluginLogger.trace("ProgramObjectRetrieved\n");
    HeapText synopsis(t_get_program_sysnopsis(program.get()));
    statement.close();
    return synopsis.release();
}

int EpgSQLPluginVexmoor::m_checkForProgramInDB(const char* programId, ConnectionPtr connection) {
    const bool found =
        m_hasRow("SELECT EventId From myView WHERE EventId='" + std::string(programId) + "';", connection);
    pluginLogger.trace(found ? "Program exists in DB!\n" : "Program does not exists in DB!\n");
    return found ? 0 : -1;
}
