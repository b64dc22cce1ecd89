// The host's functions that begin and end an answer.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/Uri.h"

namespace epgtest {

/// While it lives, adds a line to `lines` for each call of the URI parsers and of the functions that make,
/// print and destroy a document: `parse path "epg2/channels" -1`, `make document`, `print 2 option 1`,
/// `delete path`, `delete no path`. A record or document that is not the one last made reads as another:
/// `destroy another document`. One at a time. A program that uses it compiles HostCalls.cpp in.
class HostCalls {
public:
    explicit HostCalls(std::vector<std::string>& lines);
    ~HostCalls();
    HostCalls(const HostCalls&) = delete;
    HostCalls& operator=(const HostCalls&) = delete;

    /// Handed out by the path parser in place of a record of its own; stays the test's.
    TARNO_rstr_uri_path_st* pathRecord = nullptr;

    /// Prints in the printer's place.
    std::function<int(char** text, int* length)> print;

    /// Called before a document is destroyed.
    std::function<void()> beforeDestroy;

    // For the functions that stand before the host's own.
    void add(const std::string& line) { lines_.push_back(line); }
    void addEnd(const std::string& verb, const std::string& noun, const void* object, const void* made);
    const void* path = nullptr;
    const void* query = nullptr;
    const void* document = nullptr;

private:
    std::vector<std::string>& lines_;
};

}  // namespace epgtest
