// Storage for many small texts.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace epgset {

/// Keeps texts in a few large blocks, each text once however often it is added. One owner, no lock.
class TextPool {
public:
    TextPool() = default;
    TextPool(TextPool&& other) noexcept { swap(other); }
    TextPool& operator=(TextPool&& other) noexcept {
        swap(other);
        return *this;
    }
    ~TextPool() = default;

    using Blocks = std::vector<std::unique_ptr<char[]>>;

    /// The stored copy of `text`. It lives as long as the pool, or as the blocks that takeBlocks()
    /// gave away.
    std::string_view add(std::string_view text);

    /// Gives the blocks to the caller and leaves the pool empty.
    Blocks takeBlocks();

private:
    void swap(TextPool& other) noexcept;
    char* room(std::size_t bytes);

    Blocks blocks_;
    std::unordered_set<std::string_view> known_;
    char* next_ = nullptr;  ///< free room of the newest shared block
    std::size_t free_ = 0;  ///< bytes of it
};

}  // namespace epgset
