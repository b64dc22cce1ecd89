// What the plug-in's frame calls of the plug-in class.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/Uri.h"

namespace epgtest {

/// The arguments of one REST query.
struct ServiceQuery {
    void* document;
    std::string method;
    TARNO_rstr_uri_path_st* path;
    TARNO_rstr_uri_query_st* query;
    char* body;
    int bodyLength;
    char* location;
};

/// While it lives, adds a line to `lines` for each call from the frame: `check`, `rebuild`,
/// `rebuild forced`, `query`, `command`. What has no answer of the test's runs as ever. One at a time. A
/// program that uses it compiles ServiceCalls.cpp in and links with serviceCallsOptions (CMakeLists.txt).
class ServiceCalls {
public:
    explicit ServiceCalls(std::vector<std::string>& lines);
    ~ServiceCalls();
    ServiceCalls(const ServiceCalls&) = delete;
    ServiceCalls& operator=(const ServiceCalls&) = delete;

    std::function<bool()> check;                                                 ///< in its place
    std::function<void(bool forced)> rebuild;                                    ///< in its place
    std::function<int(const ServiceQuery& query)> query;                         ///< in its place
    std::function<int(TARNO_rstr_uri_query_st* query, void* document)> command;  ///< in its place

    /// For the functions that stand before the class's own.
    void add(const std::string& line) { lines_.push_back(line); }

private:
    std::vector<std::string>& lines_;
};

}  // namespace epgtest
