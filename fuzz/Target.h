// What is fuzzed: each target takes any bytes, and aborts when what it asserts of them does not hold.
#pragma once

#include <span>
#include <string_view>

namespace epgfuzz {

/// One target. Its function may be called any number of times; each call begins in the same state.
struct Target {
    std::string_view name;
    void (*run)(std::string_view input);
};

/// All targets.
std::span<const Target> targets();

/// The target of that name, or null.
const Target* findTarget(std::string_view name);

void fuzzRequest(std::string_view input);
void fuzzScheduleBody(std::string_view input);
void fuzzQueryParameters(std::string_view input);
void fuzzClientSql(std::string_view input);
void fuzzTimes(std::string_view input);
void fuzzUtf8ToUtf16(std::string_view input);
void fuzzUtf16ToUtf8(std::string_view input);
void fuzzDeviceDescription(std::string_view input);
void fuzzXmltv(std::string_view input);
void fuzzLineup(std::string_view input);
void fuzzDocument(std::string_view input);

}  // namespace epgfuzz
