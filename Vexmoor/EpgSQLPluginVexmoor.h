// The plug-in class: the guide table and the queries over it.
#pragma once

#include <sqlite3.h>

#include <atomic>
#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "Vexmoor/KeptMirror.h"
#include "host/Connection.h"
#include "host/Logger.h"
#include "host/Mutex.h"
#include "host/SharedPtr.h"
#include "host/Statement.h"
#include "host/Uri.h"

/// The class's one logger, "Vexmoor/EpgSQLPluginVexmoor".
extern const Container::Logger pluginLogger;

/// Pages that the database may take, of SQLite's default size.
constexpr int maximumPages = 5120;

/// Columns of the table as the import numbers them: fixed identifiers, not positions. The number comes
/// before the path here and after it in the table, on purpose.
enum class ColumnCode : int {
    None = 0,
    ChannelId = 1,
    ChannelName = 2,
    ChannelNumber = 3,
    ChannelPath = 4,
    AntennaType = 5,
    ScrambledFlag = 6,
    ServiceType = 7,
    EventId = 8,
    ProgramName = 9,
    ProgramStartTime = 10,
    ProgramEndTime = 11,
    ScheduleId = 12,
    ScheduleType = 13,
    Repeat = 14,
    ProgramCRID = 15
};

/// Whose short keys ("id", "name") the columns of a row get; the same numbers say what a list is of.
enum KeyView { ChannelView = 1, ProgramView = 2, ScheduleView = 3 };

/// Which columns a SELECT list names. The first two equal the views that they are the defaults of.
enum SelectKind { DefaultChannelColumns = 1, DefaultProgramColumns = 2, ChosenColumns = 4, AllColumns = 5 };

/// Stands where a programme's picture or page would: a URL that leads nowhere.
constexpr const char* placeholderUrl = "about:blank";

/// The service. Its state is static: one database in memory with one table, `myView`, made and filled
/// when the instance is first asked for. Status results are HTTP statuses, 0 meaning 200 and -1 that a
/// document object could not be made. Container::DomainException may come out of whatever fills the
/// table.
///
/// Instance() and rebuildDB() may be called from several threads; queries share the one connection
/// without a further lock.
class EpgSQLPluginVexmoor {
public:
    EpgSQLPluginVexmoor() = default;

    /// The instance; the first call makes the database and fills it.
    static Container::SharedPtr<EpgSQLPluginVexmoor> Instance();

    /// Answers a request for a REST resource: writes into `document`, answers the status. `location`
    /// is not used: it is the caller's own copy.
    int ExecuteClientQuery(void* document, const char* method, TARNO_rstr_uri_path_st* pathRecord,
                           TARNO_rstr_uri_query_st* queryRecord, char* body, int bodyLength, char* location);

    /// Runs the SQL text that is the first value of the query.
    int ExecuteClientCommand(TARNO_rstr_uri_query_st* queryRecord, void* document);

    /// Whether the middleware's channels or programmes have changed enough since the last change to
    /// fill the table again.
    bool checkDB_UpdateNeeded();

    /// Drops the table and fills it again, when forced or when the last fill is over 600 s old.
    void rebuildDB(bool force);

    /// Deletes the `count` programmes that start last among those without a schedule, and gives their
    /// pages back.
    static void removeLastNProgramEntries(Container::SharedPtr<Connection> connection, int count);

protected:  // open to derived classes, so that each operation can be tried alone
    using ParameterMap = std::map<std::string, std::string>;
    using ConnectionPtr = Container::SharedPtr<Connection>;

    // Database -----------------------------------------------------------------------------------
    static ConnectionPtr m_createSqlDB(const std::string& name);
    static void m_configEpgDB(ConnectionPtr connection);

    // Table schema -------------------------------------------------------------------------------

    /// The REST key of a result column under a key view: 1 channel, 2 programme, 3 schedule rows.
    static void m_convertColNameToUrParam(const std::string& column, int keyView, std::string& key);

    // SQL texts ----------------------------------------------------------------------------------
    static void m_extractColsFrmQuery(std::string& query, std::list<std::string>* columns);
    static void m_extractColsFrmQueryInt(std::string& query, std::vector<int>* codes);
    static void m_getCreateTblSql(std::string templateText, std::string& sql, std::string& table);
    static void m_formatCreateSql(std::list<std::string>& definitions, std::string& sql, std::string& table);
    static void m_getInsertSql(std::list<std::string>* values, std::string& sql, std::string& table);
    static void m_addItemsToInsertSql(std::list<std::string>* values, std::string& value);
    static void m_replaceSingleQuotes(std::string& text);
    static void m_getViewNameFrmSql(const std::string& sql, std::string& name);

    // Kept, although nothing calls them:
    static void m_getTableNameFrmSql(const std::string& sql, std::string& name);
    static bool m_TableCreated(std::string& table, std::map<std::string, std::string>& tables);
    static int m_getIntFrmDateTimeString(const std::string& text);
    static int m_getPrgStartTimeFrmSql(const std::string& sql, std::string& time);
    static int m_getPrgEndTimeFrmSql(const std::string& sql, std::string& time);
    static bool m_isProgramTimeInQueryRange(int start, int end, int rangeStart, int rangeEnd);

    // Import -------------------------------------------------------------------------------------
    static int m_CreateDBTable(const std::string& source, const std::string& templateText,
                               TARNO_rstr_uri_query_st* query, ConnectionPtr connection);
    static int m_createTblFrmEpg(const std::string& templateText, std::string& sql, ConnectionPtr connection);
    static int m_parseEpgData(const std::string& templateText, std::string& table, ConnectionPtr connection,
                              TARNO_rstr_uri_query_st* query);
    static void m_getDataFromEpgCacheFAST(std::vector<int>* codes, std::string& table, TCChannel* channel,
                                          ws_epg_program* record, TCProgram* program,
                                          ConnectionPtr connection);
    static void m_getSchedDataFromEpgCache(int code, std::list<std::string>* values, bool found,
                                           CRemindInfo* info);
    static void m_insertFakeProgram(TCChannel* channel, ConnectionPtr connection);
    static int m_getCRIDsForPrgm(TCProgram* program, std::string& text);

    /// Makes the indexes for which the database has room; always 0. The table serves without them.
    static int m_createIndexes(ConnectionPtr connection);

    /// Tells SQLite when to use the indexes, so that no statement's rows come in the order of one. It forgets
    /// that when it reads the schema again, as after a vacuum. Not while a statement is being stepped.
    static void m_hintIndexes(ConnectionPtr connection);

    // Update check and rebuild -------------------------------------------------------------------
    static int m_deleteDBTable(const std::string& table, ConnectionPtr connection);

    // Query parameters ---------------------------------------------------------------------------
    static int m_validateQueryParamsFieldName(const std::string& name);
    static int m_validateQueryParams(TARNO_rstr_uri_query_st* query);

    /// The query's parameters by name; the last of one name counts.
    static ParameterMap m_copyQueryParams(const TARNO_rstr_uri_query_st* query);

    /// Copies the paging texts, empty when absent; false when one is refused.
    static bool m_getPagingParams(const ParameterMap& parameters, std::string& itemsMax,
                                  std::string& startIndex);

    // SQL clauses --------------------------------------------------------------------------------

    /// Appends the columns that a "select" or "sort" value stands for under a view, in a fixed order.
    static void m_getColNamesFrmQueryParam(const std::string& value, std::list<std::string>& columns,
                                           int view);

    /// Appends "SELECT " and the columns. Answers the SelectKind; -1 without memory for the list.
    static int m_getSqlSelectCols(std::string& sql, const ParameterMap& parameters, int view);

    /// Collects the conditions by column; always 0.
    static int m_getWhereConditions(std::map<std::string, std::string>& conditions,
                                    const ParameterMap& parameters, int view);

    /// Appends the WHERE clause: 0 when it did, 1 when there is no condition.
    static int m_getSqlWhereConditions(std::string& sql, const ParameterMap& parameters, int view);

    /// Appends the ORDER BY clause: 0; -1 without memory for the list.
    static int m_getSqlSortConditions(std::string& sql, const ParameterMap& parameters, int view);

    // Result rows: of a statement that has just given one ------------------------------------------

    /// Reads the current row by REST key; -1 for a null statement.
    static int m_getSqlRowData(sqlite3_stmt* statement, int keyView, std::map<std::string, std::string>& row);

    /// Writes the current row into an object of the document; -1 for a null argument.
    static int m_output_sql_result(void* object, int keyView, sqlite3_stmt* statement);

    /// Traces the first eight columns of the current row; 0.
    static int m_printSqlRowData(Statement& statement);

    // Lists: one page of a statement's rows. 200, 204 without a row, -1 without an object.
    static int m_getChnlListResults(std::string sql, void* document, std::string itemsMax,
                                    std::string startIndex, int selectKind, ConnectionPtr connection);
    static int m_getPrgmListForChnlResults(std::string sql, void* document, std::string itemsMax,
                                           std::string startIndex, int selectKind, ConnectionPtr connection);
    static int m_getPrgmListResults(std::string sql, void* document, std::string itemsMax,
                                    std::string startIndex, int selectKind, ConnectionPtr connection);
    class RowWriter;
    struct ListStyle;

    /// How many programmes the unfiltered list has; -1 when they cannot be counted.
    static std::int32_t m_countWholeTable(ConnectionPtr connection);

    /// What the three lists share: the "items", the page, the counts.
    static int m_getListResults(const ListStyle& style, const std::string& sql, void* document,
                                const std::string& itemsMax, const std::string& startIndex, int selectKind,
                                ConnectionPtr connection);

    // Channel queries ----------------------------------------------------------------------------
    static int m_execChnlListSqlQuery(TARNO_rstr_uri_query_st* query, void* document, const char* method,
                                      ConnectionPtr connection);
    static int m_execChnlInfoSqlQuery(const char* channelId, void* document, const char* method,
                                      ConnectionPtr connection);
    static int m_getChnlInfoResults(std::string sql, void* document, ConnectionPtr connection);

    /// 0 when the channel has a row, else -1.
    static int m_checkForChannelInDB(const char* channelId, ConnectionPtr connection);

    /// Whether the method is exactly "GET"; warns when it is not.
    static bool m_isGet(const char* method);

    /// Writes the first row of a statement into the document root: 200, or 404 without a row.
    static int m_writeFirstRow(const std::string& sql, int keyView, void* document, ConnectionPtr connection);

    /// Whether a statement gives a row.
    static bool m_hasRow(const std::string& sql, ConnectionPtr connection);

    // Programme queries --------------------------------------------------------------------------
    static int m_execPrgmListSqlQuery(TARNO_rstr_uri_query_st* query, void* document, const char* method,
                                      ConnectionPtr connection);
    static int m_execPrgmListForChnlSqlQuery(const char* channelId, TARNO_rstr_uri_query_st* query,
                                             void* document, const char* method, ConnectionPtr connection);
    static int m_execPrgmInfoSqlQuery(const char* programId, void* document, const char* method,
                                      ConnectionPtr connection);
    static int m_getPrgmInfoResults(std::string sql, const char* programId, void* document,
                                    ConnectionPtr connection);
    static int m_getPrgmDetailQuery(const char* programId, void* document, const char* method,
                                    ConnectionPtr connection);

    /// The programme's synopsis, which the caller releases with free unless it is programWithoutSynopsis;
    /// may be null.
    static char* m_getPrgmSynopsis(const char* programId, ConnectionPtr connection);

    /// 0 when the programme has a row, else -1.
    static int m_checkForProgramInDB(const char* programId, ConnectionPtr connection);

    /// Stands for the synopsis of a programme that cannot be found: "NONE", recognised by its text and
    /// never released.
    static char programWithoutSynopsis[];

    // Schedule queries ---------------------------------------------------------------------------
    static int m_execSchedulesSqlQuery(void* document, const char* method, ConnectionPtr connection);
    static int m_getSchedulesResults(std::string sql, void* document, ConnectionPtr connection);
    static int m_execSchedInfoSqlQuery(const char* scheduleId, void* document, const char* method,
                                       ConnectionPtr connection);
    static int m_getSchedInfoResults(std::string sql, const char* scheduleId, void* document,
                                     ConnectionPtr connection);
    static int m_execPrgmSchedInfoSqlQuery(const char* programId, void* document, const char* method,
                                           ConnectionPtr connection);
    static int m_getPrgmSchedInfoResults(std::string sql, const char* programId, void* document,
                                         ConnectionPtr connection);

    // Schedule mirror ----------------------------------------------------------------------------

    /// Brings the schedule columns to what the store holds, as the next two do, but that the bookings are
    /// read first: when the table shows just these already and nobody has written to it since, it is left as
    /// it is.
    static void m_mirrorSchedules(ConnectionPtr connection);

    /// Clears the schedule columns, and the rows of manual bookings; 0.
    static int m_removeDBSchedData(ConnectionPtr connection);

    /// Writes the store's bookings into them: 0, or -1 when it stopped at a booking without a channel.
    static int m_updateDBSchedData(ConnectionPtr connection);

    /// Writes one booking, with `update` where it has a programme.
    static void m_writeBooking(const MirroredBooking& booking, Statement& update, ConnectionPtr connection,
                               KeptMirror::Writing& writing);

    /// Adds the row of a manual booking, pruning the table when it is full.
    static void m_insertSchedData(const std::string& channelId, const std::string& channelNumber,
                                  const std::string& channelName, const std::string& serviceType,
                                  const std::string& antennaType, const std::string& scrambledFlag,
                                  const std::string& eventId, const std::string& startTime,
                                  const std::string& endTime, const std::string& scheduleId,
                                  const std::string& scheduleType, const std::string& repeat,
                                  ConnectionPtr connection);

    /// Whether a row with these three values exists.
    static bool m_checkIfEventIsInDB(const std::string& channelId, const std::string& eventId,
                                     const std::string& scheduleId, ConnectionPtr connection);

    // Client SQL ---------------------------------------------------------------------------------

    /// Runs the query's first value and writes its rows: 200, 204 without a row, -1 without an object.
    static int m_SendSQLCmd(TARNO_rstr_uri_query_st* queryRecord, ConnectionPtr connection, void* document);

    // Router -------------------------------------------------------------------------------------
    struct RestRequest;
    struct Route;
    static const Route m_routes[];
    static int m_addSchedule(void* document, const char* method, TARNO_rstr_uri_query_st* queryRecord,
                             char* body, int bodyLength, char* location);
    static int m_modifyPrgmSchedule(void* document, const char* method, const char* programId, char* body,
                                    int bodyLength, char* location);
    static int m_modifySchedule(void* document, const char* method, const char* scheduleId, char* body,
                                int bodyLength);

    /// Kept, although nothing calls it: 0 when the query's first name is "sql", else -1. The record has at
    /// least one pair.
    static int m_ParseClientCommand(TARNO_rstr_uri_query_st* queryRecord, void* document);

    // State, made in this order when the library is loaded ------------------------------------------
    static Container::SharedPtr<EpgSQLPluginVexmoor> epgSQLPluginInstance;
    static Container::SharedPtr<Connection> epgDBConnection;
    static std::map<std::string, std::string> epgTableList;  ///< template text by table name
    static Container::Mutex instanceMutex;                   ///< held for the whole of Instance()
    static Container::Mutex rebuildMutex;                    ///< held for the whole of rebuildDB()
    static std::atomic<std::uint32_t> lastUpdateTime;        ///< the middleware's seconds; 0 at load

    /// Channels and programmes by row of the antenna table, as seen at the last change. Atomic, since
    /// two requests may write them at once; the last one wins.
    static std::atomic<std::int32_t> channelCounts[32];
    static std::atomic<std::int32_t> programCounts[32];
};

/// Names fixed at creation.
namespace GuideTable {
constexpr const char* source = "masterEPG";
constexpr const char* name = "myView";

/// Describes the table: it is read, never executed, and names no SELECT on purpose.
constexpr const char* schemaTemplate =
    "CREATE VIEW myView AS ChannelId, ChannelNumber, ChannelName, ChannelPath, ServiceType, AntennaType, "
    "ScrambledFlag, EventId, ProgramName, ProgramStartTime, ProgramEndTime, ScheduleId, ScheduleType, Repeat "
    "FROM masterEPG;";
}  // namespace GuideTable
