// What a programme is about.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "set/guide/TextArchive.h"

namespace epgset {

/// A text that lies somewhere as it is, or in an archive with many others: synopses take several times what
/// everything else of a guide does, and hardly one in a thousand is ever asked for. It refers to its text,
/// which must live longer.
class Synopsis {
public:
    /// An empty one.
    Synopsis() = default;

    /// A text as it is.
    explicit Synopsis(std::string_view text)
        : where_(text.data()), length_(static_cast<std::uint32_t>(text.size())) {}

    Synopsis(const TextArchive& archive, TextArchive::Place place)
        : where_(&archive), start_(place.start), length_(place.length) {}

    bool empty() const { return length_ == 0; }

    /// A copy of the text. Throws std::bad_alloc.
    std::string text() const {
        if (const auto uncompressed = plain()) return std::string(*uncompressed);
        return static_cast<const TextArchive*>(where_)->text({start_, length_});
    }

    /// The text where it lies as it is; nothing when it is in an archive.
    std::optional<std::string_view> plain() const {
        if (empty()) return std::string_view();
        if (start_ != asItIs) return std::nullopt;
        return std::string_view(static_cast<const char*>(where_), length_);
    }

private:
    static constexpr std::uint32_t asItIs = UINT32_MAX;  ///< no text of an archive starts there

    const void* where_ = nullptr;  ///< the text or its archive: a guide has many of these
    std::uint32_t start_ = asItIs;
    std::uint32_t length_ = 0;
};

}  // namespace epgset
