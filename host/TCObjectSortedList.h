// The middleware's list of channel keys.
#pragma once

#include "host/SnapshotList.h"
#include "host/TCChannelKey.h"

/// Channel keys of one reception mode, ascending by major, then minor number.
class TCObjectSortedList : public SnapshotList<TCChannelKey> {};
