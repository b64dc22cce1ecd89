// The television application object over the guide cache.
#pragma once

#include "host/AppTV.h"

namespace epgset {

/// Answers from currentGuide() and clock(). It keeps no state, so calls from several threads do not meet. A
/// guide that is replaced between two calls shows in the second: a channel handed out before is looked up in
/// the new guide by its number.
class GuideTelevision : public AppTV {
public:
    /// The channels of the source type `pattern->Type()`; none without a type or for an unknown one. The
    /// line-up holds no hidden channels, so the template's other marks change nothing.
    int GetChannelKeyList(TCObjectSortedList* list, const TCChannel* pattern, int* count) override;

    int ExistChannel(const TCChannelKey* pKey, TCChannel* pChannel, int reserved) override;

    /// The programmes that end after `start` and begin before `start` + `duration`; start 0 over 4294967295
    /// seconds or more means all of them.
    int GetProgramList(CCSortedList* list, const TCChannel* channel, long long start,
                       long long duration) override;

    void GetTimeZone(int* reserved, int* minutesEast) override;
};

}  // namespace epgset
