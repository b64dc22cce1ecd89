// The entry points that libFuzzer calls: "fuzz TARGET [libFuzzer's own arguments]".
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "fuzz/Target.h"

namespace {

/// Tells the processes that libFuzzer starts, which are not handed the target's name.
constexpr const char* targetVariable = "EPG_FUZZ_TARGET";

const epgfuzz::Target* chosen = nullptr;

}  // namespace

// Declared here: libFuzzer has no header for them.
extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    char** const first = *arguments;
    if (*count > 1 && (chosen = epgfuzz::findTarget(first[1])) != nullptr) {
        setenv(targetVariable, first[1], 1);
        std::copy(first + 2, first + *count + 1, first + 1);  // the null at the end too
        --*count;
    } else if (const char* const name = std::getenv(targetVariable)) {
        chosen = epgfuzz::findTarget(name);
    }
    if (chosen != nullptr) return 0;
    std::fputs("fuzz TARGET [libFuzzer's arguments], where TARGET is one of\n", stderr);
    for (const epgfuzz::Target& target : epgfuzz::targets())
        std::fprintf(stderr, "  %s\n", target.name.data());
    std::exit(2);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    chosen->run(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
