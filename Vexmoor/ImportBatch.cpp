#include "Vexmoor/ImportBatch.h"

#include <utility>

#include "host/DomainException.h"
#include "host/Statement.h"

namespace {

constexpr std::size_t statementsOfOneTransaction = 256;

/// The batch of the import that this thread runs: the operations that write rows have no argument for it.
constinit thread_local ImportBatch* currentBatch = nullptr;

}  // namespace

void runOrRaise(const std::string& sql, const Container::SharedPtr<Connection>& connection) {
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(sql);
    do {
        statement.compile();
        if (!statement.step()) Container::raiseError("Failed to create DB entry");
    } while (statement.hasMoreSql());
}

ImportBatch::ImportBatch(Container::SharedPtr<Connection> connection)
    : m_connection(std::move(connection)), m_begins(!isOpen()) {
    currentBatch = this;
}

ImportBatch::~ImportBatch() {
    currentBatch = nullptr;
    if (m_begins && isOpen()) runPlain("COMMIT;");
}

void ImportBatch::run(const std::string& sql, const Container::SharedPtr<Connection>& connection) {
    if (currentBatch != nullptr && currentBatch->m_begins)
        currentBatch->add(sql);
    else
        runOrRaise(sql, connection);
}

void ImportBatch::add(const std::string& sql) {
    if (!isOpen()) runPlain("BEGIN;");
    try {
        runOrRaise(sql, m_connection);
    } catch (const Container::DomainException&) {
        if (isOpen()) throw;
        for (const std::string& lost : m_uncommitted)
            runOrRaise(lost, m_connection);
        m_uncommitted.clear();
        throw;
    }
    m_uncommitted.push_back(sql);
    if (m_uncommitted.size() < statementsOfOneTransaction) return;
    runPlain("COMMIT;");
    m_uncommitted.clear();
}

bool ImportBatch::isOpen() const {
    return m_connection->handle() != nullptr && sqlite3_get_autocommit(m_connection->handle()) == 0;
}

void ImportBatch::runPlain(const char* sql) {
    Statement statement;
    statement.setConnection(m_connection);
    statement.setSql(sql);
    statement.compile();
    statement.step();
}
