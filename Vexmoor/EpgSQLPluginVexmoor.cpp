// The plug-in class's static objects, and how the instance and its database are made.
#include "Vexmoor/EpgSQLPluginVexmoor.h"

#include "host/CTimerUtil.h"

const Container::Logger pluginLogger = Container::Logger::logger("Vexmoor/EpgSQLPluginVexmoor");

Container::SharedPtr<EpgSQLPluginVexmoor> EpgSQLPluginVexmoor::epgSQLPluginInstance;
Container::SharedPtr<Connection> EpgSQLPluginVexmoor::epgDBConnection;
std::map<std::string, std::string> EpgSQLPluginVexmoor::epgTableList;
Container::Mutex EpgSQLPluginVexmoor::instanceMutex;
Container::Mutex EpgSQLPluginVexmoor::rebuildMutex;
constinit std::atomic<std::uint32_t> EpgSQLPluginVexmoor::lastUpdateTime = 0;
constinit std::atomic<std::int32_t> EpgSQLPluginVexmoor::channelCounts[32] = {};
constinit std::atomic<std::int32_t> EpgSQLPluginVexmoor::programCounts[32] = {};

Container::SharedPtr<EpgSQLPluginVexmoor> EpgSQLPluginVexmoor::Instance() {
    const Container::ScopedLock lock(instanceMutex);
    if (!epgSQLPluginInstance) {
        // An exception of the fill leaves the connection but no instance: the next call starts afresh.
        epgDBConnection = m_createSqlDB("");
        m_CreateDBTable(GuideTable::source, GuideTable::schemaTemplate, nullptr, epgDBConnection);
        pluginLogger.debug("Table and DB created\n");
        epgSQLPluginInstance = Container::SharedPtr<EpgSQLPluginVexmoor>(new EpgSQLPluginVexmoor());
        lastUpdateTime = CTimerUtil::GetCurrentEpochTime();
    }
    return epgSQLPluginInstance;
}

EpgSQLPluginVexmoor::ConnectionPtr EpgSQLPluginVexmoor::m_createSqlDB(const std::string& /*name*/) {
    ConnectionPtr connection(new Connection());
    connection->open(":memory:");
    KeptMirror::forget();  // of a database that may have stood in the same place
    pluginLogger.debug("DB created [IN MEMORY]\n");
    m_configEpgDB(connection);
    return connection;
}

void EpgSQLPluginVexmoor::m_configEpgDB(ConnectionPtr connection) {
    Statement statement;
    statement.setConnection(connection);
    // The first is no setting that SQLite knows, and has no effect; it stays as it is, on purpose. The
    // second caps the database at 5120 pages of SQLite's default size.
    for (const char* pragma : {"PRAGMA max_page_size = 1024;", "PRAGMA max_page_count = 5120;"}) {
        statement.setSql(pragma);
        statement.compile();
        if (!statement.step()) pluginLogger.error("!!! Failed setting PRAGMA statement !!!");
    }
    statement.close();
}
