// The recordings that run now.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "set/guide/Guide.h"

namespace epgset {

/// One recording that runs.
struct Recording {
    std::shared_ptr<const Channel> channel;  ///< never null; a copy that keeps no guide alive
    unsigned long scheduleUid = 0;           ///< of its entry in the reminder store
    std::filesystem::path file;
    std::int64_t start = 0;  ///< UNIX seconds
};

/// The list of running recordings. Used by any thread.
class Recordings {
public:
    /// What ends a recording: called once, by the thread that stops it, without a lock.
    using Stop = std::function<void()>;

    /// Enters a recording, which starts now by the set's clock, and answers the handle that it ends with.
    /// `stop` may be empty.
    std::uint64_t start(const Channel& channel, unsigned long scheduleUid, std::filesystem::path file,
                        Stop stop = {});

    /// Takes a recording off the list that has come to its end; nothing when it is not there any more.
    void end(std::uint64_t handle);

    /// Stops what is recorded from that channel and answers whether there was any.
    bool stop(int tvMode, int major, int minor);

    /// Everything that runs, in the order in which it was started.
    std::vector<Recording> running() const;

    /// Counts bytes that were written to a recording.
    void countBytes(std::size_t bytes) { bytesRecorded_ += bytes; }
    std::uint64_t bytesRecorded() const { return bytesRecorded_; }

    /// Numbers the recordings from 1 on, in that order, and answers how many there are.
    int number();

    /// The channel of the recording with that number, from the last numbering; null when it has ended or
    /// there was none.
    std::shared_ptr<const Channel> channelOf(int number) const;

private:
    struct Entry {
        std::uint64_t handle;
        Recording recording;
        Stop stop;
    };

    std::atomic<std::uint64_t> bytesRecorded_ = 0;
    mutable std::mutex mutex_;
    std::vector<Entry> entries_;           ///< guarded by mutex_
    std::vector<std::uint64_t> numbered_;  ///< guarded by mutex_; handles by number
    std::uint64_t lastHandle_ = 0;         ///< guarded by mutex_
};

/// The set's recordings.
Recordings& recordings();

}  // namespace epgset
