// The set's middleware: what stands behind g_pAppTV.
#pragma once

#include <memory>

#include "set/guide/Guide.h"

class CReminder;

namespace epgset {

/// The guide that the middleware answers from; never null.
std::shared_ptr<const Guide> currentGuide();

/// Makes `guide` the middleware's guide at once. What was handed out before keeps the old one.
void useGuide(std::shared_ptr<const Guide> guide);

/// Makes `reminder` the store that CReminder::GetInstance() answers; null: none. The caller owns it.
void useReminder(CReminder* reminder);

/// Lets the next allocations of channel objects through and then fails every one; a negative number
/// ends the fault. For tests.
void failChannelAllocationsAfter(int allocations);

}  // namespace epgset
