#include "set/recorder/Recorder.h"

#include <fmt/format.h>

#include <algorithm>
#include <exception>
#include <optional>
#include <system_error>
#include <utility>

#include "host/Logger.h"
#include "set/events/EventRing.h"
#include "set/middleware/ChannelTexts.h"
#include "set/middleware/Clock.h"
#include "set/files/FileWriting.h"
#include "set/recorder/PvrState.h"
#include "set/recorder/RecordingName.h"
#include "set/recorder/RecordingRepair.h"
#include "set/recorder/Recordings.h"

namespace epgset {
namespace {

const Container::Logger& log() {
    static const Container::Logger logger = Container::Logger::logger("set/recorder");
    return logger;
}

RecordingNote noteOf(const RecordingOrder& order) {
    RecordingNote note;
    note.channelId = channelIdText(order.tvMode, order.major, order.minor);
    note.channelNumber = channelNumberText(order.major, order.minor);
    note.channelName =
        order.channel && !order.channel->name.empty() ? order.channel->name : note.channelNumber;
    note.scheduleUid = order.uid;
    note.title = order.title;
    note.synopsis = order.synopsis;
    note.plannedStart = order.start;
    note.plannedEnd = order.end;
    return note;
}

std::string nameOf(const RecordingNote& note) {
    return recordingName(note.plannedStart, note.channelName, note.title);
}

std::string messageOf(const std::error_code& error, const std::filesystem::path& folder) {
    return isFull(error) ? "the disk is full"
                         : "nothing can be written to " + folder.string() + ": " + error.message();
}

/// Why the set as it is records nothing; empty where it does.
std::string setRefusal() {
    switch (pvrState()) {
        case PvrState::On:
            return "";
        case PvrState::Off:
            return "the set cannot record";
        case PvrState::NoDevice:
            return "the set has no storage device";
        case PvrState::Unformatted:
            return "the storage device is not formatted";
    }
    return "the set cannot record";
}

RecordingSession::Ending endingOf(RecordingEnd why) {
    switch (why) {
        case RecordingEnd::Ended:
            return RecordingSession::Ending::Ended;
        case RecordingEnd::Removed:
            return RecordingSession::Ending::Removed;
        case RecordingEnd::Replaced:
            return RecordingSession::Ending::Replaced;
        case RecordingEnd::SetStops:
            return RecordingSession::Ending::SetStops;
    }
    return RecordingSession::Ending::Ended;
}

}  // namespace

Recorder::Recorder(Settings settings, Stopped stopped)
    : settings_(std::move(settings)),
      stopped_(std::move(stopped)),
      quota_(settings_.folder, settings_.maximumBytes) {
    repairRecordings(settings_.folder);
}

Recorder::~Recorder() {
    for (const Running& running : running_)
        running.session->end(RecordingSession::Ending::SetStops);
    for (const Running& running : running_)
        running.session->wait();
}

bool Recorder::begin(const RecordingOrder& order) {
    forgetFinished();
    if (const auto running = activeRecording(order.uid)) {
        if (running->session->plannedStart() == order.start) return true;
        end(order.uid, RecordingEnd::Replaced);
    }
    RecordingNote note = noteOf(order);
    if (const std::string reason = setRefusal(); !reason.empty()) {
        log().error("Recording %s of channel %s is refused: %s", scheduleIdText(order.uid), note.channelId,
                    reason);
        return false;
    }
    try {
        const std::string reason = refusal(order);
        if (reason.empty()) return record(order, std::move(note));
        refuse(reason, std::move(note));
    } catch (const std::exception& error) {
        log().error("Recording %s is refused: %s", scheduleIdText(order.uid), error.what());
    }
    return false;
}

std::string Recorder::refusal(const RecordingOrder& order) const {
    const std::string id = channelIdText(order.tvMode, order.major, order.minor);
    if (!order.channel) return "channel " + id + " is not in the line-up";
    if (order.channel->source.empty()) return "channel " + id + " has no source";
    if (const auto fault = sourceFault(order.channel->source)) return "channel " + id + ": " + *fault;
    if (tunersInUse() >= settings_.tuners)
        return fmt::format("no tuner is free, {} in use", settings_.tuners);
    return "";
}

bool Recorder::record(const RecordingOrder& order, RecordingNote note) {
    note.start = clock().now();
    std::error_code error;
    auto files = createRecordingFiles(settings_.folder, nameOf(note), true, note, error);
    if (!files) {
        log().error("Recording %s of channel %s is refused: %s", scheduleIdText(order.uid), note.channelId,
                    messageOf(error, settings_.folder));
        return false;
    }
    quota_.lookAgain();  // the note and the room that is kept for it count too
    const std::filesystem::path file = files->stream->path();
    const auto session = std::make_shared<RecordingSession>(order.channel->source, std::move(note),
                                                            std::move(*files), quota_, settings_.times);
    enter(*order.channel, session, file);
    log().debug("Recording %s of channel %s goes into %s", scheduleIdText(order.uid),
                channelIdText(order.tvMode, order.major, order.minor), file.string());
    return true;
}

void Recorder::enter(const Channel& channel, const std::shared_ptr<RecordingSession>& session,
                     const std::filesystem::path& file) {
    const unsigned long uid = session->scheduleUid();
    // The session is not owned here: its own thread takes it off the list.
    const auto stop = [uid, start = session->plannedStart(), recording = std::weak_ptr(session),
                       stopped = stopped_] {
        if (const auto running = recording.lock()) running->end(RecordingSession::Ending::Stopped);
        try {
            stopped(uid, start);
        } catch (const std::exception& error) {
            log().error("It is not kept that recording %s was stopped: %s", scheduleIdText(uid),
                        error.what());
        }
    };
    const std::uint64_t handle = recordings().start(channel, uid, file, stop);
    {
        const std::lock_guard lock(mutex_);
        running_.push_back({session, handle});
    }
    events().publish(event::recordingStarted, schedulePath(uid));
    session->start([handle, uid] {
        recordings().end(handle);
        events().publish(event::recordingEnded, schedulePath(uid));
    });
}

void Recorder::refuse(const std::string& reason, RecordingNote note) {
    log().error("Recording %s is refused: %s", scheduleIdText(note.scheduleUid), reason);
    note.state = recording_state::failed;
    note.reason = reason;
    std::error_code error;
    if (!createRecordingFiles(settings_.folder, nameOf(note), false, note, error))
        log().error("Nothing is told of it beside the recordings: %s", messageOf(error, settings_.folder));
}

void Recorder::end(unsigned long uid, RecordingEnd why) {
    const auto running = activeRecording(uid);
    if (!running) return;
    running->session->end(endingOf(why));
    recordings().end(running->handle);
}

int Recorder::tunersInUse() const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(
        std::ranges::count_if(running_, [](const Running& running) { return running.session->active(); }));
}

std::optional<Recorder::Running> Recorder::activeRecording(unsigned long uid) const {
    const std::lock_guard lock(mutex_);
    for (const Running& running : running_) {
        if (running.session->scheduleUid() == uid && running.session->active()) return running;
    }
    return std::nullopt;
}

void Recorder::forgetFinished() {
    const std::lock_guard lock(mutex_);
    std::erase_if(running_, [](const Running& running) { return running.session->finished(); });
}

}  // namespace epgset
