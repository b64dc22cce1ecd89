#include "tests/support/HostCalls.h"

#include <dlfcn.h>

#include "host/ResponseDocument.h"

namespace {

epgtest::HostCalls* listener = nullptr;

/// The host's own function of that name.
template <typename Function>
Function* host(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string quoted(const char* text, int length) {
    const std::string shown = text == nullptr ? "(null)" : "\"" + std::string(text) + "\"";
    return shown + " " + std::to_string(length);
}

}  // namespace

namespace epgtest {

HostCalls::HostCalls(std::vector<std::string>& lines) : lines_(lines) {
    listener = this;
}

HostCalls::~HostCalls() {
    listener = nullptr;
}

void HostCalls::addEnd(const std::string& verb, const std::string& noun, const void* object,
                       const void* made) {
    const char* which = object == nullptr ? " no " : object == made ? " " : " another ";
    add(verb + which + noun);
}

}  // namespace epgtest

// These stand before the host's own for the whole program.
extern "C" {

TARNO_rstr_uri_path_st* TARNO_rstr_uri_parse_path(const char* path, int length) {
    static const auto next = host<decltype(TARNO_rstr_uri_parse_path)>("TARNO_rstr_uri_parse_path");
    if (listener == nullptr) return next(path, length);
    listener->add("parse path " + quoted(path, length));
    TARNO_rstr_uri_path_st* record = listener->pathRecord;
    if (record == nullptr) record = next(path, length);
    listener->path = record;
    return record;
}

TARNO_rstr_uri_query_st* TARNO_rstr_uri_parse_query(const char* query, int length) {
    static const auto next = host<decltype(TARNO_rstr_uri_parse_query)>("TARNO_rstr_uri_parse_query");
    TARNO_rstr_uri_query_st* record = next(query, length);
    if (listener != nullptr) {
        listener->add("parse query " + quoted(query, length));
        listener->query = record;
    }
    return record;
}

void TARNO_rstr_uri_delete_path(TARNO_rstr_uri_path_st* record) {
    static const auto next = host<decltype(TARNO_rstr_uri_delete_path)>("TARNO_rstr_uri_delete_path");
    if (listener != nullptr) {
        listener->addEnd("delete", "path", record, listener->path);
        if (record == listener->pathRecord) return;
    }
    next(record);
}

void TARNO_rstr_uri_delete_query(TARNO_rstr_uri_query_st* record) {
    static const auto next = host<decltype(TARNO_rstr_uri_delete_query)>("TARNO_rstr_uri_delete_query");
    if (listener != nullptr) listener->addEnd("delete", "query", record, listener->query);
    next(record);
}

void* TARNO_rdoc_create_root() {
    static const auto next = host<decltype(TARNO_rdoc_create_root)>("TARNO_rdoc_create_root");
    void* document = next();
    if (listener != nullptr) {
        listener->add(document == nullptr ? "make no document" : "make document");
        listener->document = document;
    }
    return document;
}

int TARNO_rdoc_print_opt(void* document, int format, char** text, int* length, int option) {
    static const auto next = host<decltype(TARNO_rdoc_print_opt)>("TARNO_rdoc_print_opt");
    if (listener != nullptr) {
        listener->add("print " + std::to_string(format) + " option " + std::to_string(option));
        if (listener->print) return listener->print(text, length);
    }
    return next(document, format, text, length, option);
}

void TARNO_rdoc_destroy(void* document) {
    static const auto next = host<decltype(TARNO_rdoc_destroy)>("TARNO_rdoc_destroy");
    if (listener != nullptr) {
        if (listener->beforeDestroy) listener->beforeDestroy();
        listener->addEnd("destroy", "document", document, listener->document);
    }
    next(document);
}
}
