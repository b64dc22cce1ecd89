// A programme of the middleware's guide.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/Export.h"

namespace epgset {
struct Channel;
struct Programme;
}  // namespace epgset

/// One programme. A new one is empty. Times are UNIX seconds; texts are UTF-16 in big-endian byte
/// order. A copy shares what the original was filled with.
class HOST_API TCProgram {
public:
    /// What marks a programme as part of a series.
    struct TTSeriesItem {
        std::vector<unsigned char> title;  ///< UTF-16, big-endian; the item's own copy
    };

    TCProgram() = default;

    /// `channel` lives as long as what `programme` shares; null when it is not known.
    explicit TCProgram(std::shared_ptr<const epgset::Programme> programme,
                       const epgset::Channel* channel = nullptr);
    TCProgram(const TCProgram&) = default;
    TCProgram& operator=(const TCProgram&) = default;
    virtual ~TCProgram();

    std::uint32_t StartTime() const;
    std::uint32_t EndTime() const;
    int EventId() const;
    int FreeCAMode() const;  ///< non-zero when the programme is scrambled

    /// Length of the title in bytes; 0 when there is none.
    virtual int TitleLength() const;

    /// Copies the title into `buffer`, at most `bytes` bytes, and answers how many were copied.
    virtual int GetTitle(void* buffer, int bytes) const;

    /// The same for the extended text, which is the synopsis. It lies compressed: both throw std::bad_alloc.
    virtual int ExtendedTextLength() const;
    virtual int GetExtendedText(void* buffer, int bytes) const;

    /// Fills `item` and answers 1 when the programme is part of a series; `reserved` is 0.
    virtual int GetSeriesInfo(TTSeriesItem& item, int reserved) const;

    /// Fills `list` with the content reference identifiers of the given type (0: all).
    virtual void GetCRIDs(std::vector<std::string>& list, int type) const;

    /// The channel that it was found on, for the middleware's own use; null when it is not known. Lives as
    /// long as the programme.
    const epgset::Channel* SourceChannel() const { return m_channel; }

private:
    std::shared_ptr<const epgset::Programme> m_programme;
    const epgset::Channel* m_channel = nullptr;
};
