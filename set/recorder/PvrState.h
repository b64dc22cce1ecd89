// The set's ability to record.
#pragma once

#include <optional>
#include <string_view>

namespace epgset {

enum class PvrState {
    On,
    Off,         ///< the model cannot record
    NoDevice,    ///< it could, but has no storage device
    Unformatted  ///< its storage device is not formatted for recording
};

/// The state of a word: on, off, no-device or unformatted; nothing for another.
std::optional<PvrState> pvrStateOf(std::string_view word);

/// The state in use, at first On. Used by any thread.
PvrState pvrState();
void usePvrState(PvrState state);

}  // namespace epgset
