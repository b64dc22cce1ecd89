// What the reminder store asks of the recorder.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "set/guide/Guide.h"

namespace epgset {

/// One occurrence of a reminder that is to be recorded.
struct RecordingOrder {
    unsigned long uid = 0;                   ///< of its entry in the reminder store
    std::shared_ptr<const Channel> channel;  ///< null: the line-up does not have it now
    int tvMode = 0;                          ///< the channel that was booked, whatever the line-up has
    int major = 0;
    int minor = 0;
    std::int64_t start = 0;  ///< planned, UNIX seconds; with the UID it names the occurrence
    std::int64_t end = 0;    ///< planned, UNIX seconds, exclusive
    std::string title;       ///< UTF-8
    std::string synopsis;    ///< UTF-8
};

/// Why a recording is no longer wanted.
enum class RecordingEnd {
    Ended,     ///< its time is over
    Removed,   ///< its entry was removed
    Replaced,  ///< its entry was replaced by another time or channel, or by no recording
    SetStops   ///< the set is going down; it goes on when the set starts again
};

/// Carries out orders. Calls come from one thread; none waits for a source or for the network.
class OrderTaker {
public:
    virtual ~OrderTaker() = default;

    /// Begins to record, at once. Answers whether the order was taken: not where the channel or its source is
    /// missing, where the set cannot record or where no tuner is free, which the taker logs and reports. An
    /// order that was refused is not given again.
    virtual bool begin(const RecordingOrder& order) = 0;

    /// Ends the recording of that entry; nothing where there is none.
    virtual void end(unsigned long uid, RecordingEnd why) = 0;

    /// Whether that entry is being recorded. What was begun may come to its end by itself: with its source,
    /// on a full disk, by the user's stop.
    virtual bool records(unsigned long uid) const = 0;
};

}  // namespace epgset
