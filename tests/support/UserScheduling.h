// Takes the user's permission to schedule away.
#pragma once

namespace epgtest {

/// While it lives, the user may not schedule. One at a time. A program that uses it compiles
/// UserScheduling.cpp in and links with -Wl,--wrap=_Z28t_is_user_scheduling_allowedv.
class NoUserScheduling {
public:
    NoUserScheduling();
    ~NoUserScheduling();
    NoUserScheduling(const NoUserScheduling&) = delete;
    NoUserScheduling& operator=(const NoUserScheduling&) = delete;
};

}  // namespace epgtest
