// The schedule request body: checked as text, then parsed into a record.
//
// The grammar is the service's own: one level of "key":"value" pairs, quoted or not, without escapes.
#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "host/CAppUtil.h"
#include "host/CPVRWrapper.h"

namespace {

bool contains(const std::string& body, const char* text) {
    return body.find(text) != std::string::npos;
}

bool containsOneOf(const std::string& body, std::initializer_list<const char*> texts) {
    return std::any_of(texts.begin(), texts.end(),
                       [&body](const char* text) { return contains(body, text); });
}

void traceBody(const std::string& body) {
    adapterLogger.trace("validate: Data char buffer: %s\n\n", body);
    adapterLogger.trace("Data STRING: %s\n\n", body);
}

struct TextField {
    const char* key;
    char* ws_epg_schedule::*field;
};

constexpr TextField textFields[] = {
    {"id", &ws_epg_schedule::id},
    {"name", &ws_epg_schedule::name},
    {"type", &ws_epg_schedule::status},
    {"status", &ws_epg_schedule::status},
    {"channel_num", &ws_epg_schedule::channel_num},
    {"channel_name", &ws_epg_schedule::channel_name},
    {"antenna", &ws_epg_schedule::antenna},
    {"synopsis", &ws_epg_schedule::synopsis},
    {"start", &ws_epg_schedule::start},
    {"end", &ws_epg_schedule::end},
    {"repeat", &ws_epg_schedule::repeat},
    {"source_path", &ws_epg_schedule::source_path},
    {"storage_path", &ws_epg_schedule::storage_path},
    {"recent_record_path", &ws_epg_schedule::recent_record_path},
};

void storeForce(ws_epg_schedule& record, const char* key, const char* value) {
    if (strcasecmp(value, "true") == 0)
        record.force = 1;
    else if (strcasecmp(value, "false") == 0)
        record.force = 0;
    else if (strcasecmp(value, "check_overlap") == 0)
        record.force = 2;
    else
        adapterLogger.warning("Unknown value - \"%s\"(known):\"%s\"(unknown)", key, value);
}

void storePair(ws_epg_schedule& record, const char* key, const char* value) {
    for (const TextField& row : textFields) {
        if (std::strcmp(key, row.key) != 0) continue;
        char*& field = record.*row.field;
        std::free(field);  // the later of two pairs for one field wins
        field = t_alloc_copy(value);
        return;
    }
    if (std::strcmp(key, "force") == 0)
        storeForce(record, key, value);
    else
        adapterLogger.warning("Unknown items - \"%s\":\"%s\"", key, value);
}

/// Walks a body and cuts it into texts in place.
class BodyCursor {
public:
    explicit BodyCursor(char* body) : m_position(body) {}

    char current() const { return *m_position; }
    const char* rest() const { return m_position; }
    bool atEnd() const { return *m_position == '\0'; }
    void step() { ++m_position; }
    void skipWhiteSpace() { m_position += std::strspn(m_position, " \r\n\t"); }

    /// Moves past the first `character`; to the end without one.
    void skipPast(char character) {
        while (!atEnd() && current() != character)
            step();
        if (!atEnd()) step();
    }

    /// Takes a key or a value: quoted up to the next quote, which is cut off, or bare up to one of
    /// `delimiters`, which stays. `m_end` is where its terminator belongs.
    char* takeText(const char* delimiters) {
        if (current() == '"') {
            step();
            char* const text = m_position;
            m_position += std::strcspn(m_position, "\"");
            m_end = m_position;
            if (!atEnd()) {
                *m_position = '\0';
                step();
            }
            return text;
        }
        char* const text = m_position;
        m_position += std::strcspn(m_position, delimiters);
        m_end = m_position;
        return text;
    }

    /// Terminates the text taken last; what delimited it must have been looked at.
    void terminate() { *m_end = '\0'; }

    /// Where the text taken last ends.
    char* end() const { return m_end; }

private:
    char* m_position;
    char* m_end = nullptr;
};

/// Parses one pair into the record; false, logged, when it is none.
bool parsePair(BodyCursor& cursor, ws_epg_schedule& record) {
    cursor.skipWhiteSpace();
    char* const key = cursor.takeText(":");
    char* const keyEnd = cursor.end();
    cursor.skipWhiteSpace();
    if (cursor.current() != ':') {
        adapterLogger.error("json parsing error. no colon. : %s", cursor.rest());
        return false;
    }
    cursor.step();
    *keyEnd = '\0';
    cursor.skipWhiteSpace();
    char* const value = cursor.takeText(",}");
    cursor.skipWhiteSpace();
    if (cursor.current() != ',' && cursor.current() != '}') {
        adapterLogger.error("json parsing error. no comma or curly bracket. : %s", cursor.rest());
        return false;
    }
    cursor.step();
    cursor.skipWhiteSpace();
    cursor.terminate();
    storePair(record, key, value);
    return true;
}

}  // namespace

int t_validateSchedData(const char* body) {
    if (body == nullptr) {
        adapterLogger.trace("Data is NULL\n");
        return -1;
    }
    const std::string data = body;
    traceBody(data);
    if (contains(data, "status") &&
        !containsOneOf(
            data, {"\"status\":\"RECORD\"", "status:RECORD", "\"status\":\"RECORDING\"", "status:RECORDING",
                   "\"status\":\"NONE\"", "status:NONE", "\"status\":\"VIEW\"", "status:VIEW"})) {
        adapterLogger.trace("Failed on status\n");
        return -1;
    }
    if (contains(data, "repeat") && !containsOneOf(data, {"\"repeat\":\"ONCE\"", "repeat:ONCE",
                                                          "\"repeat\":\"SERIES\"", "repeat:SERIES"})) {
        adapterLogger.trace("Failed on repeat\n");
        return -1;
    }
    if (contains(data, "force") &&
        !containsOneOf(data, {"\"force\":\"true\"", "force:true", "\"force\":\"false\"", "force:false",
                              "\"force\":\"check_overlap\"", "force:check_overlap"})) {
        adapterLogger.trace("Failed on force\n");
        return -1;
    }
    adapterLogger.trace("Schedule data is valid\n");
    return 0;
}

int t_validateSchedDataRecord(const char* body) {
    if (body == nullptr) {
        adapterLogger.trace("Data is NULL\n");
        return -1;
    }
    const std::string data = body;
    traceBody(data);
    if (contains(data, "status") &&
        containsOneOf(data, {"\"status\":\"RECORD\"", "status:RECORD", "\"status\":\"RECORDING\"",
                             "status:RECORDING"}) &&
        t_checkForRecordingCapability() != 1) {
        adapterLogger.trace("Recording is not allowed\n");
        return -1;
    }
    return 0;
}

int t_checkForRecordingCapability() {
    adapterLogger.trace("Check devices record capability\n");
    return CAppUtil::FlagSupportRecordingSpec() != 0 && CPVRWrapper::GetDevTotal() > 0 &&
                   CPVRWrapper::IsExistRecDevice() != 0 && t_is_user_scheduling_allowed() != 0
               ? 1
               : 0;
}

ws_epg_schedule* t_prase_schedule_data(char* body, int length) {
    if (body == nullptr || length < 1) return nullptr;
    ScheduleRecord record(static_cast<ws_epg_schedule*>(std::calloc(1, sizeof(ws_epg_schedule))));
    if (!record) return nullptr;
    BodyCursor cursor(body);
    cursor.skipPast('{');
    cursor.skipWhiteSpace();
    while (!cursor.atEnd())  // a "}" does not end the parse: what follows is parsed as further pairs
        if (!parsePair(cursor, *record)) return nullptr;
    return record.release();
}
