// A plug-in for the tests of the host: what it does to a request is the request's path.
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include "host/CommonPlugin.h"
#include "host/DomainException.h"
#include "host/Plugin.h"
#include "host/Statement.h"
#include "set/memory/MemoryShortage.h"

namespace {

std::string pathOf(const Container::HttpRequest& request) {
    std::string path;
    request.getPath(path);
    return path;
}

std::string header(const Container::HttpRequest& request, const char* variable) {
    std::string value;
    request.getHeader(variable, value);
    return value;
}

/// Writes back what the host handed over, one thing a line.
void echo(Container::HttpRequest& request, Container::HttpResponse& response) {
    std::string method;
    std::string query;
    std::string body(2097153, '\0');
    request.getMethod(method);
    request.getUri().getQuery(query);
    request.getInputStream().read(body.data(), static_cast<std::streamsize>(body.size()));
    const auto read = request.getInputStream().gcount();
    std::size_t sum = 0;
    for (std::streamsize at = 0; at < read; ++at) {
        sum += static_cast<unsigned char>(body[static_cast<std::size_t>(at)]);
    }
    response.setStatus(200);
    response.setHeader("Content-Type", "text/plain");
    response.commitHeaders();
    response.getOutputStream() << "method " << method << "\npath " << pathOf(request) << "\nquery " << query
                               << "\naccept " << header(request, "HTTP_ACCEPT") << "\nlength "
                               << request.getContentLength() << "\nread " << read << "\nsum " << sum << "\n";
}

void writeStatus(Container::HttpResponse& response, int status) {
    response.setStatus(status);
    response.setHeader("Content-Type", "text/plain");
    response.commitHeaders();
    response.getOutputStream() << "status " << status;
}

/// Runs the request's body as a statement.
void runSql(Container::HttpRequest& request) {
    std::string sql;
    std::getline(request.getInputStream(), sql, '\0');
    const Container::SharedPtr<Connection> connection(new Connection);
    connection->open(":memory:");
    Statement statement;
    statement.setConnection(connection);
    statement.setSql(sql);
    statement.compile();
    statement.step();
}

int handleRequest(Container::HttpRequest& request, Container::HttpResponse& response) {
    const std::string path = pathOf(request);
    if (path.starts_with("echo")) {
        echo(request, response);
    } else if (path.starts_with("status/")) {
        writeStatus(response, std::atoi(path.c_str() + 7));
    } else if (path == "sql") {
        runSql(request);
        writeStatus(response, 200);
    } else if (path == "throw") {
        throw std::runtime_error("thrown before anything was written");
    } else if (path == "throw-number") {
        throw 7;
    } else if (path == "answer-and-throw") {
        response.setStatus(500);
        response.setHeader("Content-Type", "text/plain");
        response.commitHeaders();
        response.getOutputStream() << "answered";
        Container::raiseError("thrown after the answer");
    } else if (path == "break-off") {
        writeStatus(response, 200);
        throw std::runtime_error("thrown in the answer");
    } else if (path == "short-of-memory") {
        epgset::noteMemoryShortage();
        writeStatus(response, 201);
    } else if (path == "slow") {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        writeStatus(response, 200);
    } else if (path == "split-header") {
        response.setHeader("X-Bad", "one\r\nX-Worse: two");
        response.setStatus(200);
    } else if (path.empty()) {
        CommonPlugin::writeError(response, 404, "empty path", nullptr);
    }
    return 1;
}

int getTimerPeriod() {
    return 14400;
}

void onTimer() {
    static int calls = 0;
    if (++calls == 2) throw std::runtime_error("maintenance failed");
}

[[maybe_unused]]  // by the faulty variants
const PluginDescriptor descriptor = {1, 0, 0, 0, handleRequest, 0, getTimerPeriod, 0, 0, onTimer, 0};

}  // namespace

extern "C" __attribute__((visibility("default"))) int pluginMainEntry(
    std::uintptr_t, const PluginDescriptor** descriptorOut) {
#if defined(ENTRY_FAILS)
    *descriptorOut = &descriptor;
    return 5;
#elif defined(ENTRY_GIVES_NOTHING)
    *descriptorOut = nullptr;
    return 0;
#elif defined(WRONG_VERSION)
    static const PluginDescriptor wrong = {2, 0, 0, 0, handleRequest, 0, nullptr, 0, 0, nullptr, 0};
    *descriptorOut = &wrong;
    return 0;
#elif defined(NO_HANDLER)
    static const PluginDescriptor wrong = {1, 0, 0, 0, nullptr, 0, nullptr, 0, 0, nullptr, 0};
    *descriptorOut = &wrong;
    return 0;
#else
    *descriptorOut = &descriptor;
    return 0;
#endif
}
