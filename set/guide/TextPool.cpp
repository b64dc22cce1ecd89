#include "set/guide/TextPool.h"

#include <cstring>
#include <utility>

namespace epgset {
namespace {

// Untouched pages of a block cost nothing, so a block may be generous.
constexpr std::size_t kBlockBytes = 256 * 1024;

}  // namespace

std::string_view TextPool::add(std::string_view text) {
    if (text.empty()) return {};
    if (const auto found = known_.find(text); found != known_.end()) return *found;
    char* const stored = room(text.size());
    std::memcpy(stored, text.data(), text.size());
    return *known_.emplace(stored, text.size()).first;
}

TextPool::Blocks TextPool::takeBlocks() {
    known_.clear();
    next_ = nullptr;
    free_ = 0;
    return std::exchange(blocks_, {});
}

void TextPool::swap(TextPool& other) noexcept {
    std::swap(blocks_, other.blocks_);
    std::swap(known_, other.known_);
    std::swap(next_, other.next_);
    std::swap(free_, other.free_);
}

char* TextPool::room(std::size_t bytes) {
    if (bytes > kBlockBytes / 4) {  // a block of its own, so that no shared one is left half empty
        return blocks_.emplace_back(std::make_unique_for_overwrite<char[]>(bytes)).get();
    }
    if (bytes > free_) {
        next_ = blocks_.emplace_back(std::make_unique_for_overwrite<char[]>(kBlockBytes)).get();
        free_ = kBlockBytes;
    }
    free_ -= bytes;
    return std::exchange(next_, next_ + bytes);
}

}  // namespace epgset
