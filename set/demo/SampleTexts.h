// What the programmes of a sample guide are called and about.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <span>
#include <string>

#include "set/demo/DemoShow.h"

namespace epgset {

/// Random numbers that are the same wherever the program was built.
class SampleRandom {
public:
    SampleRandom(std::uint64_t seed, std::uint64_t channel);

    /// A number from 0 to `bound` - 1; `bound` is small.
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(engine_() % bound); }

private:
    std::mt19937_64 engine_;
};

/// The texts of one programme.
struct SampleProgramme {
    std::string title;
    std::string synopsis;    ///< empty: it has none
    std::size_t season = 0;  ///< from 1; 0: it is no episode
    std::size_t episode = 0;
};

/// Makes up the programmes of one channel: one channel in four speaks another language than English, with
/// other letters than ASCII's.
class SampleTexts {
public:
    /// `random` must outlive the object.
    SampleTexts(std::size_t channel, SampleRandom& random);

    SampleProgramme next();

private:
    const DemoShow& anyShow() { return shows_[random_.below(shows_.size())]; }

    std::span<const DemoShow> shows_;
    SampleRandom& random_;
};

}  // namespace epgset
