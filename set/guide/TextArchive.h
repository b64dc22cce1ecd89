// Storage for many texts that are seldom read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace epgset {

/// Keeps texts compressed, a few dozen together: to read one takes some 20 microseconds. Made by a
/// TextArchiveWriter; it never changes and is shared between threads.
class TextArchive {
public:
    /// Where a text is.
    struct Place {
        std::uint32_t start = 0;
        std::uint32_t length = 0;
    };

    TextArchive();
    TextArchive(TextArchive&&) = default;
    TextArchive& operator=(TextArchive&&) = default;
    TextArchive(const TextArchive&) = delete;
    TextArchive& operator=(const TextArchive&) = delete;

    /// The text at a place that the archive's writer answered. Throws std::bad_alloc.
    std::string text(Place place) const;

    /// What it takes in memory.
    std::size_t bytes() const { return compressed_.size() + blocks_.size() * sizeof(Block); }

private:
    friend class TextArchiveWriter;

    /// Where a block begins, in the texts one after the other and in what they are compressed to.
    struct Block {
        std::uint32_t start;
        std::uint32_t compressed;
    };

    std::string_view block(std::size_t index) const;

    std::uint64_t id_;           ///< of this archive alone, as long as the process lives
    std::vector<Block> blocks_;  ///< the last one stands for the end
    std::vector<char> compressed_;
};

}  // namespace epgset
