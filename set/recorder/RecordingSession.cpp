#include "set/recorder/RecordingSession.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <utility>

#include "host/Logger.h"
#include "set/middleware/ChannelTexts.h"
#include "set/middleware/Clock.h"
#include "set/files/FileWriting.h"

namespace epgset {
namespace {

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/recorder");
    return logger;
}

}  // namespace

RecordingSession::RecordingSession(const std::string& source, RecordingNote note, RecordingFiles files,
                                   RecordingsQuota& quota, const RecordingTimes& times)
    : scheduleUid_(note.scheduleUid),
      plannedStart_(note.plannedStart),
      note_(std::move(note)),
      files_(std::move(files)),
      quota_(quota),
      times_(times),
      reader_(source, times.source) {}

RecordingSession::~RecordingSession() {
    wait();
}

void RecordingSession::start(Over over) {
    over_ = std::move(over);
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        fail("there can be no more threads");
        finish();
        finished_ = true;
        throw;
    }
}

void RecordingSession::end(Ending why) {
    Ending none = Ending::None;
    if (!ending_.compare_exchange_strong(none, why)) return;
    active_ = false;
    reader_.wake();
}

void RecordingSession::wait() {
    if (thread_.joinable()) thread_.join();
}

void RecordingSession::run() {
    try {
        record();
    } catch (const std::exception& error) {
        fail(error.what());
    }
    active_ = false;
    try {
        finish();
    } catch (const std::exception& error) {
        log().error("Recording %s could not be brought to its end: %s", scheduleIdText(scheduleUid_),
                    error.what());
    }
    finished_ = true;
}

void RecordingSession::record() {
    auto pause = times_.firstPause;
    while (wantsMore()) {
        const std::uint64_t before = files_.stream->bytes();
        const auto outcome = reader_.read(*this);
        if (outcome.end == SourceReader::End::Over) {
            note_.reason = "the source ended";
            return;
        }
        if (outcome.end == SourceReader::End::Unwanted) return;
        noteBreak(outcome.reason);
        if (files_.stream->bytes() > before) pause = times_.firstPause;
        reader_.pause(pause, *this);
        pause = std::min(pause * 2, times_.longestPause);
    }
}

void RecordingSession::noteBreak(const std::string& reason) {
    ++note_.breaks;
    const std::string text = fmt::format("Recording {}: the source of channel {} broke: {}",
                                         scheduleIdText(scheduleUid_), note_.channelId, reason);
    // A source that breaks all day for the same reason is told of once.
    if (reason != note_.latestTrouble) {
        log().warning("%s", text);
    } else {
        log().debug("%s", text);
    }
    note_.latestTrouble = reason;
}

bool RecordingSession::take(std::string_view bytes) noexcept try {
    if (!quota_.take(bytes.size())) {
        fail(fmt::format("the recordings may hold no more than {} bytes", quota_.maximum()));
        return false;
    }
    const auto error = files_.stream->append(bytes);
    quota_.wrote(bytes.size());
    if (error) failWriting(error);
    return !error;
} catch (const std::exception& error) {
    fail(error.what());
    return false;
}

bool RecordingSession::wantsMore() noexcept try {
    if (!failure_.empty() || ending_ != Ending::None) return false;
    if (clock().now() >= note_.plannedEnd) {
        end(Ending::Ended);
        return false;
    }
    keepUp();
    return failure_.empty();
} catch (const std::exception& error) {
    fail(error.what());
    return false;
}

/// Brings to the disk and into the note what has come since the last time.
void RecordingSession::keepUp() {
    const auto now = SteadyClock::now();
    const std::uint64_t bytes = files_.stream->bytes();
    if (now - lastSync_ >= times_.sync) {
        lastSync_ = now;
        if (bytes != bytesSynced_) {
            if (const auto error = files_.stream->sync()) failWriting(error);
        }
        bytesSynced_ = bytes;
    }
    if (now - lastNote_ >= times_.note) {
        lastNote_ = now;
        note_.bytes = bytes;
        // A note that could not be written is written at the next time; the last one has room of its own.
        if (const auto error = files_.note.replace(noteText(note_)))
            log().debug("%s is not up to date: %s", files_.note.path().string(), error.message());
    }
}

void RecordingSession::fail(std::string reason) {
    active_ = false;
    failure_ = reason.empty() ? "unknown" : std::move(reason);
}

void RecordingSession::failWriting(const std::error_code& error) {
    fail(isFull(error) ? "the disk is full" : "its file cannot be written: " + error.message());
}

void RecordingSession::describeEnd() {
    note_.end = clock().now();
    note_.bytes = files_.stream->bytes();
    note_.state = recording_state::ended;
    if (!failure_.empty()) {
        note_.state = recording_state::failed;
        note_.reason = failure_;
        return;
    }
    switch (ending_.load()) {
        case Ending::None:
        case Ending::Ended:
            if (note_.bytes > 0) return;
            note_.state = recording_state::failed;
            note_.reason = note_.latestTrouble.empty()
                               ? "nothing came from the source"
                               : "nothing came from the source: " + note_.latestTrouble;
            return;
        case Ending::Stopped:
            note_.state = recording_state::stopped;
            return;
        case Ending::Removed:
            note_.state = recording_state::removed;
            return;
        case Ending::Replaced:
            note_.state = recording_state::replaced;
            return;
        case Ending::SetStops:
            note_.state = recording_state::interrupted;
            note_.reason = "the set was stopped";
            return;
    }
}

void RecordingSession::finish() {
    if (const auto error = files_.stream->sync(); error && failure_.empty()) failWriting(error);
    describeEnd();
    const std::string text = fmt::format("Recording {} of channel {} has ended: {}{}{}, {} bytes in {}",
                                         scheduleIdText(scheduleUid_), note_.channelId, note_.state,
                                         note_.reason.empty() ? "" : ": ", note_.reason, note_.bytes,
                                         files_.stream->path().string());
    if (note_.state == recording_state::failed) {
        log().error("%s", text);
    } else {
        log().debug("%s", text);
    }
    if (const auto error = files_.note.finish(noteText(note_)))
        log().error("%s cannot be written: %s", files_.note.path().string(), error.message());
    files_.stream->close();
    over_();
}

}  // namespace epgset
