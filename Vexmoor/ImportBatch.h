// The transactions of an import.
#pragma once

#include <string>
#include <vector>

#include "host/Connection.h"
#include "host/SharedPtr.h"

/// Runs every statement of a text on its own; raises "Failed to create DB entry" when one fails.
void runOrRaise(const std::string& sql, const Container::SharedPtr<Connection>& connection);

/// While it lives, the statements of an import are committed a few hundred at a time, which saves
/// time. What was written before a failure stays all the same: when SQLite rolls the transaction
/// back, as it does when the database is full, its statements are run again one by one. Inside a
/// transaction that somebody else left open nothing is begun.
class ImportBatch {
public:
    explicit ImportBatch(Container::SharedPtr<Connection> connection);

    /// Commits what has been run.
    ~ImportBatch();
    ImportBatch(const ImportBatch&) = delete;
    ImportBatch& operator=(const ImportBatch&) = delete;

    /// Runs a text on `connection`, as part of this thread's batch if there is one. Raises as runOrRaise.
    static void run(const std::string& sql, const Container::SharedPtr<Connection>& connection);

private:
    void add(const std::string& sql);
    bool isOpen() const;
    void runPlain(const char* sql);

    Container::SharedPtr<Connection> m_connection;
    std::vector<std::string> m_uncommitted;  ///< the statements since BEGIN
    bool m_begins;                           ///< false inside somebody else's transaction
};
