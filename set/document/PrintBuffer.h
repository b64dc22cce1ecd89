// The growing text that a document is printed into.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace epgset {

struct FreeText {
    void operator()(char* text) const noexcept { std::free(text); }
};

/// A text made by malloc.
using MallocText = std::unique_ptr<char, FreeText>;

/// Throws std::bad_alloc when it cannot grow. Also an output stream as RapidJSON's writers want it.
class PrintBuffer {
public:
    using Ch = char;

    explicit PrintBuffer(std::size_t capacity) { grow(capacity); }
    PrintBuffer(const PrintBuffer&) = delete;
    PrintBuffer& operator=(const PrintBuffer&) = delete;

    std::size_t size() const { return static_cast<std::size_t>(end_ - text_.get()); }

    /// Appends a text between quotes.
    void appendQuoted(std::string_view text) {
        Reserve(text.size() + 2);
        *end_++ = '"';
        if (!text.empty()) std::memcpy(end_, text.data(), text.size());
        end_ += text.size();
        *end_++ = '"';
    }

    void append(std::string_view text);

    /// Hands the text out with a NUL behind it; the buffer is of no further use.
    MallocText release();

    /// Makes room for `count` characters by PutUnsafe.
    void Reserve(std::size_t count) {
        if (static_cast<std::size_t>(limit_ - end_) < count) grow(count);
    }
    void PutUnsafe(char character) { *end_++ = character; }
    void Put(char character) {
        Reserve(1);
        PutUnsafe(character);
    }
    void Flush() {}

private:
    void grow(std::size_t count);

    MallocText text_;
    char* end_ = nullptr;
    char* limit_ = nullptr;
};

inline void PutReserve(PrintBuffer& buffer, std::size_t count) {
    buffer.Reserve(count);
}
inline void PutUnsafe(PrintBuffer& buffer, char character) {
    buffer.PutUnsafe(character);
}

}  // namespace epgset
