// Builds a Guide.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "set/guide/Guide.h"
#include "set/guide/TextPool.h"

namespace epgset {

/// Collects channels and programmes in any order and makes a Guide of them: sorted, titles in a few large
/// blocks, synopses compressed. Numbers, times and ids are taken as given; who reads a guide file sees to
/// them.
class GuideBuilder {
public:
    /// A programme as it is added; the texts are copied.
    struct ProgrammeDraft {
        std::uint32_t start = 0;
        std::uint32_t stop = 0;
        std::uint16_t eventId = 0;
        bool scrambled = false;
        std::string_view title;
        std::string_view synopsis;
        std::string_view series;
    };

    GuideBuilder() = default;

    /// A builder that goes on with the texts of a pool. Of these, the guide takes what its programmes hold.
    explicit GuideBuilder(TextPool texts) : texts_(std::move(texts)) {}

    /// Adds a channel and answers its handle for addProgramme; the programme fields are ignored.
    std::size_t addChannel(Channel channel);

    /// Adds a programme to a channel. Throws std::out_of_range for a handle that addChannel did not give.
    void addProgramme(std::size_t channel, const ProgrammeDraft& programme);

    /// What Guide::programmesDropped() answers; 0 unless it is set.
    void setProgrammesDropped(std::size_t count) { programmesDropped_ = count; }

    /// The finished guide. The builder is empty afterwards.
    std::shared_ptr<const Guide> finish();

private:
    std::vector<Channel> channels_;
    std::vector<Programme> programmes_;  ///< `channel` is the handle
    TextPool texts_;
    std::size_t programmesDropped_ = 0;
};

}  // namespace epgset
