// What the set tells about itself.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "set/guide/GuideReport.h"
#include "set/reminders/ReminderStore.h"

namespace epgset {

/// What its parts know of themselves at the moment.
struct SetState {
    std::vector<GuideReport> guides;         ///< what became of each guide
    int tuners = 0;                          ///< how many recordings may run at once
    int tunersInUse = 0;                     ///< how many do
    std::string recordingsFolder;            ///< the storage device
    std::optional<std::uint64_t> freeBytes;  ///< on it; nothing when that cannot be told
    std::vector<DueEntry> next;              ///< the entries that come due next, by start
};

/// What the set is started with, and how it is asked for its state.
struct SetFacts {
    std::string pvr;   ///< the word of what the set says of its ability to record
    std::string zone;  ///< the process's time zone by name
    std::function<SetState()> state = [] { return SetState(); };  ///< called by any thread
};

/// The document of "/set/status" as it is now, compact JSON.
std::string statusDocument(const SetFacts& facts);

}  // namespace epgset
