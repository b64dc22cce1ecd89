#include "set/middleware/StateRevision.h"

#include <array>
#include <atomic>
#include <cstddef>

#include "set/middleware/Clock.h"

namespace epgset {
namespace {

constinit std::array<std::atomic<std::uint64_t>, 4> numbers{};

std::atomic<std::uint64_t>& numberOf(StatePart part) {
    return numbers[static_cast<std::size_t>(part)];
}

}  // namespace

StateRevision stateRevision() {
    return {numberOf(StatePart::Guide),   numberOf(StatePart::Bookings), numberOf(StatePart::Table),
            numberOf(StatePart::Clients), clock().zoneMinutes(),         clock().daylightSaving()};
}

void countChange(StatePart part) {
    ++numberOf(part);
}

}  // namespace epgset
