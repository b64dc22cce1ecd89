// The television application: line-up, guide, zone and window.
#pragma once

#include "host/CCSortedList.h"
#include "host/Export.h"
#include "host/TCChannel.h"
#include "host/TCChannelKey.h"
#include "host/TCObjectSortedList.h"

/// The television application object. May be called from any thread; each call sees one state of the
/// line-up and the guide.
class HOST_API AppTV {
public:
    virtual ~AppTV();

    /// Fills `list` with the keys of the channels that the template asks for, and `*count` with their
    /// number. Answers 1 when there are any, else 0.
    virtual int GetChannelKeyList(TCObjectSortedList* list, const TCChannel* pattern, int* count) = 0;

    /// Fills `pChannel` with the channel that `pKey` names and answers non-zero; 0 when the line-up has
    /// none. `reserved` is 0.
    virtual int ExistChannel(const TCChannelKey* pKey, TCChannel* pChannel, int reserved) = 0;

    /// Fills `list` with the channel's programmes that are on within `duration` seconds from `start`
    /// (UNIX seconds). Answers 1 when there are any, else 0.
    virtual int GetProgramList(CCSortedList* list, const TCChannel* channel, long long start,
                               long long duration) = 0;

    /// The zone offset in minutes east of UTC, daylight saving left aside, in `*minutesEast`.
    /// `*reserved` is not used by callers.
    virtual void GetTimeZone(int* reserved, int* minutesEast) = 0;
};

/// The television's window.
class HOST_API AppWindow {
public:
    virtual ~AppWindow();

    /// Tunes to the channel of that number at once.
    virtual void ChangeChannel(int major, int minor) = 0;
};

/// Set by the host before a plug-in is called.
extern HOST_API AppTV* g_pAppTV;
extern HOST_API AppWindow* g_pAppWindow;
