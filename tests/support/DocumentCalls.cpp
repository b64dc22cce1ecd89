#include "tests/support/DocumentCalls.h"

#include <dlfcn.h>

#include "host/ResponseDocument.h"

namespace {

epgtest::DocumentCalls* listener = nullptr;

/// The document builder's own function of that name.
template <typename Function>
Function* builder(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string orNull(const char* text) {
    return text == nullptr ? "(null)" : text;
}

}  // namespace

namespace epgtest {

DocumentCalls::DocumentCalls() {
    listener = this;
}

DocumentCalls::~DocumentCalls() {
    listener = nullptr;
}

void DocumentCalls::made(void* object) {
    if (object == nullptr) {
        lines.emplace_back("make nothing");
        return;
    }
    const int number = static_cast<int>(numbers_.size()) + 1;
    numbers_[object] = number;
    lines.push_back("make object " + std::to_string(number));
}

void DocumentCalls::added(void* object, const char* key, const std::string& value) {
    const std::string place = key == nullptr ? " unnamed: " : " \"" + std::string(key) + "\": ";
    lines.push_back(nameOf(object) + place + value);
}

std::string DocumentCalls::nameOf(void* object) const {
    const auto found = numbers_.find(object);
    return found == numbers_.end() ? "root" : "object " + std::to_string(found->second);
}

}  // namespace epgtest

// These stand before the document builder's own for the whole program.
extern "C" {

void* TARNO_rdoc_create_object(void* document) {
    static const auto next = builder<decltype(TARNO_rdoc_create_object)>("TARNO_rdoc_create_object");
    void* object = next(document);
    if (listener != nullptr) listener->made(object);
    return object;
}

void TARNO_rdoc_add_object(void* parent, const char* key, void* child) {
    static const auto next = builder<decltype(TARNO_rdoc_add_object)>("TARNO_rdoc_add_object");
    if (listener != nullptr) listener->added(parent, key, listener->nameOf(child));
    next(parent, key, child);
}

void TARNO_rdoc_add_UTF8(void* object, const char* key, const char* text) {
    static const auto next = builder<decltype(TARNO_rdoc_add_UTF8)>("TARNO_rdoc_add_UTF8");
    if (listener != nullptr) listener->added(object, key, "text " + orNull(text));
    next(object, key, text);
}

void TARNO_rdoc_add_integer(void* object, const char* key, int value) {
    static const auto next = builder<decltype(TARNO_rdoc_add_integer)>("TARNO_rdoc_add_integer");
    if (listener != nullptr) listener->added(object, key, "integer " + std::to_string(value));
    next(object, key, value);
}

void TARNO_rdoc_add_boolean(void* object, const char* key, const char* value) {
    static const auto next = builder<decltype(TARNO_rdoc_add_boolean)>("TARNO_rdoc_add_boolean");
    if (listener != nullptr) listener->added(object, key, "boolean " + orNull(value));
    next(object, key, value);
}
}
