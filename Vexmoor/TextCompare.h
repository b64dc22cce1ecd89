// Comparing texts that may be null.
#pragma once

#include <cstring>

/// Whether `text` is there and exactly `expected`.
inline bool isText(const char* text, const char* expected) {
    return text != nullptr && std::strcmp(text, expected) == 0;
}
