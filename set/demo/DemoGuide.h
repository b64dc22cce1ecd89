// The built-in guide, for a set that was given none.
#pragma once

#include <cstdint>
#include <memory>

#include "set/guide/Guide.h"
#include "set/guide/GuideLoader.h"

namespace epgset {

/// A guide of invented channels and programmes around `now` (UNIX seconds): the day before, the day of `now`
/// and the six after it, in UTC, without gaps. It is the same whenever it is made within one day, and what
/// two days' guides have in common is the same in both, event ids included.
std::shared_ptr<const Guide> demoGuide(std::int64_t now);

/// That guide around `sources.now`, with the line-up and the bounds of `sources`, whose guides are not read.
/// A channel's id is "ANTENNA-MAJOR-MINOR.demo", as in "AIR-7-1.demo". Throws GuideError for a line-up that
/// cannot be used.
LoadedGuide loadDemoGuide(const GuideSources& sources);

}  // namespace epgset
