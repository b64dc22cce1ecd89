// The plug-in class, opened: its operations and state one by one.
#pragma once

#include "Vexmoor/EpgSQLPluginVexmoor.h"

namespace epgtest {

/// Opens the plug-in class's operations and state to tests.
class OpenPlugin : public EpgSQLPluginVexmoor {
public:
    using EpgSQLPluginVexmoor::ListStyle;
    using EpgSQLPluginVexmoor::ParameterMap;
    using EpgSQLPluginVexmoor::channelCounts;
    using EpgSQLPluginVexmoor::epgDBConnection;
    using EpgSQLPluginVexmoor::epgSQLPluginInstance;
    using EpgSQLPluginVexmoor::epgTableList;
    using EpgSQLPluginVexmoor::lastUpdateTime;
    using EpgSQLPluginVexmoor::m_addItemsToInsertSql;
    using EpgSQLPluginVexmoor::m_checkForChannelInDB;
    using EpgSQLPluginVexmoor::m_checkForProgramInDB;
    using EpgSQLPluginVexmoor::m_checkIfEventIsInDB;
    using EpgSQLPluginVexmoor::m_createIndexes;
    using EpgSQLPluginVexmoor::m_configEpgDB;
    using EpgSQLPluginVexmoor::m_convertColNameToUrParam;
    using EpgSQLPluginVexmoor::m_copyQueryParams;
    using EpgSQLPluginVexmoor::m_CreateDBTable;
    using EpgSQLPluginVexmoor::m_createSqlDB;
    using EpgSQLPluginVexmoor::m_createTblFrmEpg;
    using EpgSQLPluginVexmoor::m_deleteDBTable;
    using EpgSQLPluginVexmoor::m_execChnlInfoSqlQuery;
    using EpgSQLPluginVexmoor::m_execChnlListSqlQuery;
    using EpgSQLPluginVexmoor::m_execPrgmInfoSqlQuery;
    using EpgSQLPluginVexmoor::m_execPrgmListForChnlSqlQuery;
    using EpgSQLPluginVexmoor::m_execPrgmListSqlQuery;
    using EpgSQLPluginVexmoor::m_execPrgmSchedInfoSqlQuery;
    using EpgSQLPluginVexmoor::m_execSchedInfoSqlQuery;
    using EpgSQLPluginVexmoor::m_execSchedulesSqlQuery;
    using EpgSQLPluginVexmoor::m_extractColsFrmQuery;
    using EpgSQLPluginVexmoor::m_extractColsFrmQueryInt;
    using EpgSQLPluginVexmoor::m_formatCreateSql;
    using EpgSQLPluginVexmoor::m_getChnlInfoResults;
    using EpgSQLPluginVexmoor::m_getChnlListResults;
    using EpgSQLPluginVexmoor::m_getColNamesFrmQueryParam;
    using EpgSQLPluginVexmoor::m_getCreateTblSql;
    using EpgSQLPluginVexmoor::m_getCRIDsForPrgm;
    using EpgSQLPluginVexmoor::m_getDataFromEpgCacheFAST;
    using EpgSQLPluginVexmoor::m_getInsertSql;
    using EpgSQLPluginVexmoor::m_getIntFrmDateTimeString;
    using EpgSQLPluginVexmoor::m_getPagingParams;
    using EpgSQLPluginVexmoor::m_getPrgEndTimeFrmSql;
    using EpgSQLPluginVexmoor::m_getPrgmDetailQuery;
    using EpgSQLPluginVexmoor::m_getPrgmListForChnlResults;
    using EpgSQLPluginVexmoor::m_getPrgmListResults;
    using EpgSQLPluginVexmoor::m_getPrgmSynopsis;
    using EpgSQLPluginVexmoor::m_getPrgStartTimeFrmSql;
    using EpgSQLPluginVexmoor::m_getSchedDataFromEpgCache;
    using EpgSQLPluginVexmoor::m_getSqlRowData;
    using EpgSQLPluginVexmoor::m_getSqlSelectCols;
    using EpgSQLPluginVexmoor::m_getSqlSortConditions;
    using EpgSQLPluginVexmoor::m_getSqlWhereConditions;
    using EpgSQLPluginVexmoor::m_getTableNameFrmSql;
    using EpgSQLPluginVexmoor::m_getViewNameFrmSql;
    using EpgSQLPluginVexmoor::m_getWhereConditions;
    using EpgSQLPluginVexmoor::m_insertFakeProgram;
    using EpgSQLPluginVexmoor::m_insertSchedData;
    using EpgSQLPluginVexmoor::m_isProgramTimeInQueryRange;
    using EpgSQLPluginVexmoor::m_mirrorSchedules;
    using EpgSQLPluginVexmoor::m_output_sql_result;
    using EpgSQLPluginVexmoor::m_parseEpgData;
    using EpgSQLPluginVexmoor::m_ParseClientCommand;
    using EpgSQLPluginVexmoor::m_printSqlRowData;
    using EpgSQLPluginVexmoor::m_removeDBSchedData;
    using EpgSQLPluginVexmoor::m_replaceSingleQuotes;
    using EpgSQLPluginVexmoor::m_SendSQLCmd;
    using EpgSQLPluginVexmoor::m_TableCreated;
    using EpgSQLPluginVexmoor::m_updateDBSchedData;
    using EpgSQLPluginVexmoor::m_validateQueryParams;
    using EpgSQLPluginVexmoor::m_validateQueryParamsFieldName;
    using EpgSQLPluginVexmoor::programCounts;
    using EpgSQLPluginVexmoor::programWithoutSynopsis;

    /// Brings the class back to the state in which the library is loaded.
    static void forget() {
        epgSQLPluginInstance = Container::SharedPtr<EpgSQLPluginVexmoor>();
        epgDBConnection = Container::SharedPtr<Connection>();
        epgTableList.clear();
        lastUpdateTime = 0;
        for (auto& count : channelCounts) count = 0;
        for (auto& count : programCounts) count = 0;
    }
};

}  // namespace epgtest
