// Queries over the plug-in's own table.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "set/database/OpenConnections.h"
#include "tests/support/PluginTest.h"

namespace epgtest {

/// A log message with its level.
using LogLine = std::pair<Container::Logger::Level, std::string>;

/// A query's status and the answer as JSON.
struct Answer {
    int status;
    std::string json;
};

class QueryTest : public PluginTest {
protected:
    /// Asks a query that takes the document to write into and answers the status.
    template <typename Query>
    static Answer answerOf(const Query& query) {
        const TestDocument document;
        const int status = query(static_cast<void*>(document));
        return {status, document.json()};
    }

    /// What the plug-in class logged, with the levels.
    std::vector<LogLine> logged() const {
        std::vector<LogLine> lines;
        for (const auto& record : log.records())
            if (record.logger == "Vexmoor/EpgSQLPluginVexmoor")
                lines.emplace_back(record.level, record.message);
        return lines;
    }

    /// Whether every statement on the plug-in's database is closed, so that its table can be dropped.
    static bool leavesNoStatement() { return epgset::openStatementCount() == 0; }
};

}  // namespace epgtest
