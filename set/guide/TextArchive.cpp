#include "set/guide/TextArchive.h"

#include <zstd.h>

#include <algorithm>
#include <atomic>
#include <new>

namespace epgset {
namespace {

std::uint64_t nextId() {
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

/// The block that a thread read last: who asks for a text asks for its length first, and who goes through a
/// guide finds the next texts in the same block.
struct LastBlock {
    std::uint64_t archive = 0;
    std::size_t index = 0;
    std::string texts;
};

}  // namespace

TextArchive::TextArchive() : id_(nextId()), blocks_{{0, 0}} {}

std::string TextArchive::text(Place place) const {
    if (place.length == 0) return {};
    const auto after = std::ranges::upper_bound(blocks_, place.start, {}, &Block::start);
    const auto index = static_cast<std::size_t>(after - blocks_.begin()) - 1;
    return std::string(block(index).substr(place.start - blocks_[index].start, place.length));
}

std::string_view TextArchive::block(std::size_t index) const {
    static thread_local LastBlock last;
    if (last.archive == id_ && last.index == index) return last.texts;
    last.archive = 0;
    const Block& begin = blocks_[index];
    const Block& end = blocks_[index + 1];
    last.texts.resize(end.start - begin.start);
    const std::size_t written =
        ZSTD_decompress(last.texts.data(), last.texts.size(), compressed_.data() + begin.compressed,
                        end.compressed - begin.compressed);
    // It was compressed here and has not changed since: only memory can be wanting.
    if (ZSTD_isError(written)) throw std::bad_alloc();
    last.archive = id_;
    last.index = index;
    return last.texts;
}

}  // namespace epgset
