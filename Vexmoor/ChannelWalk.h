// Walking through the digital channels of a key list.
#pragma once

#include <memory>
#include <new>

#include "host/AppTV.h"
#include "host/TCChannel.h"
#include "host/TCObjectSortedList.h"

/// Whether a channel of the number `major`, `minor` is one that is asked for; the minor number 0 asks for
/// any.
inline bool isNumberAskedFor(int major, int minor, int majorAsked, int minorAsked) {
    return major == majorAsked && (minorAsked == 0 || minor == minorAsked);
}

/// Hands every digital channel of a key list to `visit`, as a new object that it may take, from the first on,
/// until it answers true. `missing` is told of each key that leads to none, and ends the walk by answering
/// true. Ends early without memory for a channel.
template <typename Visit, typename Missing>
void visitDigitalChannels(TCObjectSortedList& keys, Visit visit, Missing missing) {
    for (bool more = keys.Seek(TCObjectSortedList::First, 0); more && keys.Data() != nullptr;
         more = keys.Seek(TCObjectSortedList::Current, 1)) {
        std::unique_ptr<TCChannel> channel(new (std::nothrow) TCChannel());
        if (!channel) return;
        const bool found =
            g_pAppTV->ExistChannel(keys.Data(), channel.get(), 0) != 0 && channel->FlagDigital() != 0;
        if (found ? visit(channel) : missing()) return;
    }
}
