#include "tests/support/UserScheduling.h"

namespace {

bool refused = false;

}  // namespace

extern "C" {
int __real__Z28t_is_user_scheduling_allowedv();
int __wrap__Z28t_is_user_scheduling_allowedv();
int __wrap__Z28t_is_user_scheduling_allowedv() {
    return refused ? 0 : __real__Z28t_is_user_scheduling_allowedv();
}
}

namespace epgtest {

NoUserScheduling::NoUserScheduling() {
    refused = true;
}

NoUserScheduling::~NoUserScheduling() {
    refused = false;
}

}  // namespace epgtest
