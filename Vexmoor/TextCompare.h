// Comparing texts that may be null.
#pragma once

#include <strings.h>

#include <cstring>

/// Whether `text` is there and exactly `expected`.
inline bool isText(const char* text, const char* expected) {
    return text != nullptr && std::strcmp(text, expected) == 0;
}

/// Whether `text` is there and `word`, ignoring case.
inline bool isWord(const char* text, const char* word) {
    return text != nullptr && strcasecmp(text, word) == 0;
}
