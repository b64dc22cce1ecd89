// RapidJSON's writers where memory may run out.
#pragma once

#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstddef>
#include <cstdlib>
#include <new>

namespace epgset {

/// Throws std::bad_alloc. RapidJSON's own allocator answers null, which its writers do not survive.
struct ThrowingAllocator {
    [[maybe_unused]] static constexpr bool kNeedFree = true;

    static void* Malloc(std::size_t size) { return Realloc(nullptr, 0, size); }
    static void* Realloc(void* block, std::size_t, std::size_t size) {
        void* const grown = std::realloc(block, size);
        if (grown == nullptr) throw std::bad_alloc();
        return grown;
    }
    static void Free(void* block) { std::free(block); }
};

/// What a writer writes into.
using JsonBuffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, ThrowingAllocator>;

template <typename Out = JsonBuffer>
using JsonWriter = rapidjson::Writer<Out, rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;

using PrettyJsonWriter =
    rapidjson::PrettyWriter<JsonBuffer, rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;

}  // namespace epgset
