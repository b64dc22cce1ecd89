// Makes a TextArchive.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "set/guide/TextArchive.h"

struct ZSTD_CCtx_s;

namespace epgset {

/// Takes texts one after the other. Those that are alike, and those that are read together, are best added
/// together. One owner, no lock.
class TextArchiveWriter {
public:
    /// Throws std::bad_alloc.
    TextArchiveWriter();
    ~TextArchiveWriter();
    TextArchiveWriter(const TextArchiveWriter&) = delete;
    TextArchiveWriter& operator=(const TextArchiveWriter&) = delete;

    /// Adds a text. Throws std::bad_alloc, and std::length_error beyond 4 GiB of texts.
    TextArchive::Place add(std::string_view text);

    /// Adds a text of a pool, which has equal texts at one place, once: where it is already is answered from
    /// then on. Throws as add() does.
    TextArchive::Place addOfPool(std::string_view text);

    /// The archive of all that was added; nothing may be added afterwards. Throws as add() does.
    TextArchive finish();

private:
    struct FreeContext {
        void operator()(ZSTD_CCtx_s* context) const;
    };

    void endBlock();

    std::unique_ptr<ZSTD_CCtx_s, FreeContext> context_;
    std::unordered_map<const char*, TextArchive::Place> ofPool_;
    std::string open_;  ///< the texts of the block that is not full yet
    TextArchive archive_;
};

}  // namespace epgset
