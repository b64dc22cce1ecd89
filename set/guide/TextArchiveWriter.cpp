#include "set/guide/TextArchiveWriter.h"

#include <zstd.h>

#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace epgset {
namespace {

/// Larger ones compress better and take longer to read one text of.
constexpr std::size_t blockBytes = 16 * 1024;

constexpr const char* tooLong = "the texts of a guide take more than 4 GiB";
constexpr std::size_t mostBytes = std::numeric_limits<std::uint32_t>::max();

}  // namespace

void TextArchiveWriter::FreeContext::operator()(ZSTD_CCtx_s* context) const {
    ZSTD_freeCCtx(context);
}

TextArchiveWriter::TextArchiveWriter() : context_(ZSTD_createCCtx()) {
    if (!context_) throw std::bad_alloc();
}

TextArchiveWriter::~TextArchiveWriter() = default;

TextArchive::Place TextArchiveWriter::add(std::string_view text) {
    if (open_.size() >= blockBytes) endBlock();
    const std::size_t start = archive_.blocks_.back().start + open_.size();
    if (text.size() > mostBytes - start) throw std::length_error(tooLong);
    open_ += text;
    return {static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(text.size())};
}

TextArchive::Place TextArchiveWriter::addOfPool(std::string_view text) {
    const auto [known, isNew] = ofPool_.try_emplace(text.data());
    if (isNew) known->second = add(text);
    return known->second;
}

TextArchive TextArchiveWriter::finish() {
    if (!open_.empty()) endBlock();
    archive_.blocks_.shrink_to_fit();
    archive_.compressed_.shrink_to_fit();
    return std::move(archive_);
}

void TextArchiveWriter::endBlock() {
    auto& compressed = archive_.compressed_;
    const std::size_t before = compressed.size();
    if (before + ZSTD_compressBound(open_.size()) > mostBytes) throw std::length_error(tooLong);
    compressed.resize(before + ZSTD_compressBound(open_.size()));
    const std::size_t written =
        ZSTD_compressCCtx(context_.get(), compressed.data() + before, compressed.size() - before,
                          open_.data(), open_.size(), ZSTD_CLEVEL_DEFAULT);
    if (ZSTD_isError(written)) throw std::bad_alloc();  // there is room for any outcome
    compressed.resize(before + written);
    archive_.blocks_.push_back({static_cast<std::uint32_t>(archive_.blocks_.back().start + open_.size()),
                                static_cast<std::uint32_t>(compressed.size())});
    open_.clear();
}

}  // namespace epgset
