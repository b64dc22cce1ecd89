// A recorder with a source, a folder and a clock of the test's own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "set/log/LogCapture.h"
#include "set/middleware/ManualClock.h"
#include "set/recorder/PvrState.h"
#include "set/recorder/Recorder.h"
#include "set/recorder/Recordings.h"
#include "tests/set/middleware/ProcessZone.h"
#include "tests/support/StreamServer.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {

/// 2026-08-23T20:15:00+02:00
constexpr std::int64_t evening = 1'787'508'900;

inline bool eventually(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

inline std::string contentOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// What a note says. It is replaced as a whole, so that it can be read at any time.
class Note {
public:
    explicit Note(const std::filesystem::path& file) { json_.Parse(contentOf(file).c_str()); }

    bool valid() const { return !json_.HasParseError() && json_.IsObject(); }
    std::string text(const char* key) const {
        return valid() && json_.HasMember(key) && json_[key].IsString() ? json_[key].GetString() : "";
    }
    std::string state() const { return text("state"); }
    std::string reason() const { return text("reason"); }
    std::uint64_t number(const char* key) const {
        return valid() && json_.HasMember(key) && json_[key].IsUint64() ? json_[key].GetUint64()
                                                                        : ~std::uint64_t{0};
    }
    bool isNull(const char* key) const { return valid() && json_.HasMember(key) && json_[key].IsNull(); }
    const rapidjson::Document& json() const { return json_; }

private:
    rapidjson::Document json_;
};

class RecorderTest : public ::testing::Test {
protected:
    RecorderTest() {
        useClock(&clock_);
        settings_.folder = temporary_.path() / "recordings";
        settings_.times.firstPause = std::chrono::milliseconds(20);
        settings_.times.longestPause = std::chrono::milliseconds(80);
        settings_.times.sync = std::chrono::milliseconds(20);
        settings_.times.note = std::chrono::milliseconds(20);
        settings_.times.source.silence = std::chrono::seconds(10);
    }
    ~RecorderTest() override {
        recorder_.reset();
        usePvrState(PvrState::On);
        useClock(nullptr);
    }

    /// The recorder, made when it is asked for first.
    Recorder& recorder() {
        if (!recorder_) {
            recorder_ = std::make_unique<Recorder>(settings_, [this](unsigned long uid, std::int64_t start) {
                stopped_.emplace_back(uid, start);
            });
        }
        return *recorder_;
    }

    /// Half an hour on channel "News" (antenna 0, number MAJOR) of "Title UID", which begins now.
    RecordingOrder order(unsigned long uid, const std::string& source, int major = 7) const {
        Channel channel;
        channel.name = "News";
        channel.major = static_cast<std::int16_t>(major);
        channel.source = source;
        RecordingOrder made;
        made.uid = uid;
        made.channel = std::make_shared<const Channel>(channel);
        made.major = major;
        made.start = clock_.now();
        made.end = made.start + 1800;
        made.title = "Title " + std::to_string(uid);
        made.synopsis = "What happens";
        return made;
    }

    /// The files of the order with that UID where it began at `evening` on channel News.
    std::filesystem::path stream(unsigned long uid) const { return file(uid, ".ts"); }
    std::filesystem::path note(unsigned long uid) const { return file(uid, ".json"); }

    bool hasBytes(unsigned long uid, std::uintmax_t bytes = 1) const {
        return eventually([&] {
            std::error_code error;
            const std::uintmax_t size = std::filesystem::file_size(stream(uid), error);
            return !error && size >= bytes;
        });
    }
    bool reaches(unsigned long uid, const std::string& state) const {
        return eventually([&] { return Note(note(uid)).state() == state; });
    }
    bool isOver(unsigned long uid) const {
        return eventually([&] { return !Note(note(uid)).isNull("end"); });
    }

    std::vector<std::string> files() const {
        std::vector<std::string> names;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(settings_.folder, error))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    /// What is written to the log at that level, as one text.
    std::string logged(Container::Logger::Level level) const {
        std::string text;
        for (const std::string& line : log_.messagesOf("set/recorder", level))
            text += line + "\n";
        return text;
    }

    test::TemporaryFolder temporary_;
    ProcessZone zone_{"Europe/Berlin"};
    ManualClock clock_{evening};
    LogCapture log_;
    test::StreamServer server_;
    Recorder::Settings settings_;
    std::vector<std::pair<unsigned long, std::int64_t>> stopped_;
    std::unique_ptr<Recorder> recorder_;

private:
    std::filesystem::path file(unsigned long uid, const char* extension) const {
        return settings_.folder / ("2026-08-23 20-15 News Title " + std::to_string(uid) + extension);
    }
};

/// Whether a file holds what a server sent, in order and without a gap, but for what was under way at the
/// end.
::testing::AssertionResult holdsWhatWasSent(const std::filesystem::path& file,
                                            const std::vector<test::StreamServer::Run>& runs);

}  // namespace epgset
