#include "set/recorder/PvrState.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <utility>

namespace epgset {
namespace {

constexpr std::array<std::pair<std::string_view, PvrState>, 4> words{
    {{"on", PvrState::On},
     {"off", PvrState::Off},
     {"no-device", PvrState::NoDevice},
     {"unformatted", PvrState::Unformatted}}};

std::atomic<PvrState> stateInUse{PvrState::On};

}  // namespace

std::optional<PvrState> pvrStateOf(std::string_view word) {
    const auto* const found = std::ranges::find(words, word, [](const auto& entry) { return entry.first; });
    return found == words.end() ? std::nullopt : std::optional(found->second);
}

PvrState pvrState() {
    return stateInUse.load(std::memory_order_relaxed);
}

void usePvrState(PvrState state) {
    stateInUse.store(state, std::memory_order_relaxed);
}

}  // namespace epgset
