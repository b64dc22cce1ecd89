// A channel's number and identifier as the service's clients read them.
#pragma once

#include <string>

namespace epgset {

/// The service's identifier of a channel: "cid-003-7", with the minor number "cid-003-7-2". A minor number
/// below 1 means none.
std::string channelIdText(int tvMode, int major, int minor);

/// "7", with the minor number "7-2".
std::string channelNumberText(int major, int minor);

/// The service's identifier of a reminder or recording: "sch_id_17".
std::string scheduleIdText(unsigned long uid);

}  // namespace epgset
