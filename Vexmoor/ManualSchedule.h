// What the schedule service asks of manual bookings beyond the adapter's own operations.
#pragma once

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"

/// What filling a manual entry came to.
enum class ManualInput { Filled, ChannelChanged, Invalid };

/// What `t_set_manual_schedule` answers.
enum ManualResult { Done = 0, Conflict = 1, InputError = -1 };

/// Fills a manual entry from a request, whose channel number is cut up in place. A view of what is on now
/// changes the channel at once and fills nothing; what is wrong with a request is logged.
ManualInput fillManualEntry(ws_epg_schedule& request, CRemindInfo& entry);
