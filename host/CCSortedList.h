// The middleware's list of programmes.
#pragma once

#include "host/SnapshotList.h"
#include "host/TCProgram.h"

/// Programmes of one channel, ascending by start.
class CCSortedList : public SnapshotList<TCProgram> {};
