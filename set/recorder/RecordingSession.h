// One recording, from its begin to its end.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>

#include "set/recorder/RecordingFiles.h"
#include "set/recorder/RecordingNote.h"
#include "set/recorder/RecordingsQuota.h"
#include "set/recorder/SourceReader.h"

namespace epgset {

/// The times that a recording keeps, by the machine's clock.
struct RecordingTimes {
    SourceReader::Limits source;
    std::chrono::milliseconds firstPause{1'000};     ///< before a source that broke is opened again
    std::chrono::milliseconds longestPause{30'000};  ///< when it breaks time after time
    std::chrono::milliseconds sync{5'000};           ///< from one bringing to the disk to the next
    std::chrono::milliseconds note{30'000};          ///< from one note to the next
};

/// Records a source into a file with a thread of its own until its planned end by the set's clock or until it
/// is ended.
class RecordingSession : private SourceTaker {
public:
    enum class Ending { None, Ended, Stopped, Removed, Replaced, SetStops };

    /// Called by the session's thread when all is over and on the disk.
    using Over = std::function<void()>;

    /// `note` is what the files were made with. The quota must outlive the session.
    RecordingSession(const std::string& source, RecordingNote note, RecordingFiles files,
                     RecordingsQuota& quota, const RecordingTimes& times);

    /// Waits for the thread.
    ~RecordingSession() override;
    RecordingSession(const RecordingSession&) = delete;
    RecordingSession& operator=(const RecordingSession&) = delete;

    /// Starts to record. Throws std::system_error when there can be no thread; the note then says so.
    void start(Over over);

    /// Has it end soon; only the first reason counts. Called by any thread.
    void end(Ending why);

    /// Waits until all is over. Called by one thread.
    void wait();

    /// Whether it still records: false from the moment in which it is ended or fails. For any thread.
    bool active() const { return active_; }

    /// Whether its thread has nothing more to do. For any thread.
    bool finished() const { return finished_; }

    unsigned long scheduleUid() const { return scheduleUid_; }
    std::int64_t plannedStart() const { return plannedStart_; }

private:
    using SteadyClock = std::chrono::steady_clock;

    bool take(std::string_view bytes) noexcept override;
    bool wantsMore() noexcept override;

    void run();
    void record();
    void noteBreak(const std::string& reason);
    void keepUp();
    void fail(std::string reason);
    void failWriting(const std::error_code& error);
    void describeEnd();
    void finish();

    const unsigned long scheduleUid_;
    const std::int64_t plannedStart_;
    RecordingNote note_;  // the rest is the thread's once it runs
    RecordingFiles files_;
    RecordingsQuota& quota_;
    const RecordingTimes times_;
    SourceReader reader_;
    Over over_;
    std::string failure_;
    std::uint64_t bytesSynced_ = 0;
    SteadyClock::time_point lastSync_ = SteadyClock::now();
    SteadyClock::time_point lastNote_ = SteadyClock::now();

    std::atomic<Ending> ending_{Ending::None};
    std::atomic<bool> active_{true};
    std::atomic<bool> finished_{false};
    std::thread thread_;
};

}  // namespace epgset
