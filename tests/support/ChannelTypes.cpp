#include "tests/support/ChannelTypes.h"

#include <dlfcn.h>

#include "host/TCChannel.h"

namespace {

bool none = false;

}  // namespace

/// Stands before the middleware's own for the whole program.
int TCChannel::GetDigitalChType(int tvMode) {
    static const auto next =
        reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, "_ZN9TCChannel16GetDigitalChTypeEi"));
    return none ? -1 : next(tvMode);
}

namespace epgtest {

NoDigitalChannelTypes::NoDigitalChannelTypes() {
    none = true;
}

NoDigitalChannelTypes::~NoDigitalChannelTypes() {
    none = false;
}

}  // namespace epgtest
