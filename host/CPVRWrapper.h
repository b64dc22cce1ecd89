// The middleware's recorder.
#pragma once

#include "host/Export.h"
#include "host/TCChannel.h"

/// Storage devices and running recordings. May be called from any thread.
class HOST_API CPVRWrapper {
public:
    /// Number of storage devices attached.
    static int GetDevTotal();

    /// Non-zero when one of them is formatted for recording.
    static int IsExistRecDevice();

    /// Number of recordings that run now. Until the next call they keep their numbers, also when some of
    /// them end.
    static int GetCurrentRecordingCount();

    /// Fills `channel` with the channel of recording `number` (from 1); false when there is no such
    /// recording any more.
    static bool GetRecordingChannel(int number, TCChannel& channel);

    /// Stops the recording on that channel; true when one was stopped. `reserved` is 1.
    static bool StopRecording(const TCChannel& channel, int reserved);
};
