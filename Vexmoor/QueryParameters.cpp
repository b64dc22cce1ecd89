// What a request may ask: its query parameters as a map, checked before routing, the paging texts, the
// method of the read-only resources.
#include <boost/tokenizer.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoor.h"
#include "Vexmoor/TextCompare.h"

namespace {

constexpr const char* acceptedFieldNames[] = {"name",         "id",           "channel_num", "channel_name",
                                              "program_id",   "program_name", "scrambled",   "antenna",
                                              "service_type", "start",        "end"};

/// Reads and traces a time parameter; negative when it cannot be read. 32 bits wide, on purpose: from 2038
/// on the sign is negative.
std::int32_t readTime(bool isStart, const std::string& value) {
    pluginLogger.trace(isStart ? "start string: %s\n" : "end string: %s\n", value);
    const auto time = static_cast<std::int32_t>(t_get_UNIX_from_ISO8601(value.c_str()));
    pluginLogger.trace(isStart ? "start int: %d\n" : "end int: %d\n", time);
    return time;
}

/// The value of a parameter; empty when it is absent.
std::string valueOf(const std::map<std::string, std::string>& parameters, const char* name) {
    const auto found = parameters.find(name);
    return found == parameters.end() ? std::string() : found->second;
}

}  // namespace

EpgSQLPluginVexmoor::ParameterMap EpgSQLPluginVexmoor::m_copyQueryParams(
    const TARNO_rstr_uri_query_st* query) {
    ParameterMap parameters;
    if (query == nullptr) return parameters;
    for (std::int32_t i = 0; i < query->count; ++i)
        if (query->names[i] != nullptr && query->values[i] != nullptr)
            parameters[query->names[i]] = query->values[i];
    return parameters;
}

int EpgSQLPluginVexmoor::m_validateQueryParamsFieldName(const std::string& name) {
    const bool accepted = std::any_of(std::begin(acceptedFieldNames), std::end(acceptedFieldNames),
                                      [&name](const char* field) { return name == field; });
    return accepted ? 0 : -1;
}

int EpgSQLPluginVexmoor::m_validateQueryParams(TARNO_rstr_uri_query_st* query) {
    std::int32_t start = -1;
    std::int32_t end = -1;
    for (const auto& [name, value] : m_copyQueryParams(query)) {
        if (name == "sort") {
            if (m_validateQueryParamsFieldName(value) != 0) return -1;
        } else if (name == "sort_order") {
            if (value != "ascend" && value != "descend") return -1;
        } else if (name == "scrambled") {
            if (value != "true" && value != "false") return -1;
        } else if (name == "start" || name == "end") {
            const bool isStart = name == "start";
            std::int32_t& time = isStart ? start : end;
            time = readTime(isStart, value);
            if (time < 0) return -1;
        } else if (name == "select") {
            const boost::char_separator<char> separator("|");
            const boost::tokenizer<boost::char_separator<char>> pieces(value, separator);
            for (const std::string& piece : pieces)
                if (m_validateQueryParamsFieldName(piece) != 0) return -1;
        }
    }
    if (start >= 0 && end >= 0 && start > end) {
        pluginLogger.warning("!!startTime is later than the start time\n");
        return -1;
    }
    return 0;
}

bool EpgSQLPluginVexmoor::m_getPagingParams(const ParameterMap& parameters, std::string& itemsMax,
                                            std::string& startIndex) {
    itemsMax = valueOf(parameters, "items_max");
    startIndex = valueOf(parameters, "items_start_index");
    if (!itemsMax.empty() && t_read_int(itemsMax.c_str()) <= 0) return false;
    return startIndex.empty() || t_read_int(startIndex.c_str()) >= 0;
}

bool EpgSQLPluginVexmoor::m_isGet(const char* method) {
    if (isText(method, "GET")) return true;
    pluginLogger.warning("Function does not support this %s method", method);
    return false;
}
