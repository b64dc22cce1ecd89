// The plug-in's frame: one request, and everything that its answering calls, in one order.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "plugin/EpgSQLPlugin.h"
#include "tests/support/FakeExchange.h"
#include "tests/support/HostCalls.h"
#include "tests/support/PluginTest.h"
#include "tests/support/ServiceCalls.h"

namespace epgtest {

/// A log message with its level.
using LogLine = std::pair<Container::Logger::Level, std::string>;

/// A request to the frame. `calls` holds what was done to the response, and between that the calls of the
/// host's functions and of the plug-in class.
class FrameTest : public PluginTest {
protected:
    /// Hands a request to the bridge and answers its result.
    int bridge(FakeRequest& request) { return BridgeToWebConvIF(request, response); }
    int bridge(FakeRequest&& request) { return bridge(request); }

    /// Lets every REST query end in that status, without running one.
    void answerQueriesWith(int status) {
        service.query = [status](const ServiceQuery&) { return status; };
    }

    /// What the frame logged, with the levels.
    std::vector<LogLine> frameLines() const {
        std::vector<LogLine> lines;
        for (const auto& record : log.records())
            if (record.logger == "EpgSQLPlugin") lines.emplace_back(record.level, record.message);
        return lines;
    }

    RecordingResponse response;
    std::vector<std::string>& calls = response.calls;
    HostCalls host{calls};
    ServiceCalls service{calls};
};

/// The headers of every answer that the bridge sends, as calls.
constexpr const char* jsonHeader = "setHeader Content-Type: application/json;charset=utf-8";
constexpr const char* xmlHeader = "setHeader Content-Type: application/xml;charset=utf-8";
constexpr const char* uncachedHeader = "setHeader Cache-Control: no-cache";

}  // namespace epgtest
