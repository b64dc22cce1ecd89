// The built-in guide, for a set that was given none.
#pragma once

#include <cstdint>
#include <memory>

#include "set/guide/Guide.h"

namespace epgset {

/// A guide of invented channels and programmes around `now` (UNIX seconds): the day before, the day of `now`
/// and the six after it, in UTC, without gaps. It is the same whenever it is made within one day, and what
/// two days' guides have in common is the same in both, event ids included.
std::shared_ptr<const Guide> demoGuide(std::int64_t now);

}  // namespace epgset
