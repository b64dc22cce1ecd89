// The services of the adapter: handlers called one by one, on a television whose parts the test owns.
#pragma once

#include <gmock/gmock.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/plugin/AdapterTest.h"
#include "tests/support/FakeRecorder.h"
#include "tests/support/MockReminder.h"
#include "tests/support/RecordingWindow.h"
#include "tests/support/UserScheduling.h"

namespace epgtest {

using Container::Logger;

/// A handler's answer: the status, the members that it wrote, the location that it handed out.
struct ServiceAnswer {
    int status = 0;
    std::string members;
    std::optional<std::string> location;
};

inline bool operator==(const ServiceAnswer& one, const ServiceAnswer& other) {
    return one.status == other.status && one.members == other.members && one.location == other.location;
}

inline void PrintTo(const ServiceAnswer& answer, std::ostream* stream) {
    *stream << answer.status << ' ' << answer.members << ' ' << answer.location.value_or("(no location)");
}

/// A body, which a handler may cut up; nothing stands for none.
class Body {
public:
    Body() = default;
    Body(const char* text) { assign(text); }         // NOLINT: reads as the text itself
    Body(const std::string& text) { assign(text); }  // NOLINT: as above
    Body(std::nullptr_t) {}                          // NOLINT: as above

    char* data() { return text_ ? text_->data() : nullptr; }
    int length() const { return text_ ? static_cast<int>(text_->size()) - 1 : 0; }

private:
    // Exactly as long as the text and its NUL, so that reading on is seen.
    void assign(const std::string& text) {
        text_.emplace(text.begin(), text.end());
        text_->push_back('\0');
    }

    std::optional<std::vector<char>> text_;
};

/// Three channels and, on the first, a programme that is over, one that is on and one to come. Logged lines
/// are those of the adapter.
class ServiceTest : public AdapterTest {
protected:
    static constexpr const char* pastId = "pid-000-7-2-1";
    static constexpr const char* presentId = "pid-000-7-2-2";
    static constexpr const char* comingId = "pid-000-7-2-3";
    static constexpr std::uint32_t comingStart = startTime + 3600;  ///< 2026-08-23T01:00:00Z

    ServiceTest() {
        epgset::Channel tuned = plainChannel();
        tuned.ptc = 27;
        tuned.programNumber = 4711;
        TestGuide guide;
        const auto news = guide.add(tuned);
        guide.channel(Air, 8, 0, "Films");
        guide.channel(Satellite, 7, 2, "Sport");
        guide.programme(news, startTime - 7200, startTime - 3600, "Past", 1);
        guide.programme(news, startTime - 600, startTime + 600, "Present", 2);
        guide.programme(news, comingStart, comingStart + 1800, "Coming", 3, "To come");
        guide.use();
        log.clear();
    }

    /// The answer of a handler that takes a location, as `handler(document, &location)`.
    template <class Handler>
    ServiceAnswer answerWithLocation(Handler&& handler) {
        const TestDocument document;
        char* location = nullptr;
        ServiceAnswer answer;
        answer.status = handler(document, &location);
        answer.location = taken(location);
        answer.members = document.json();
        return answer;
    }

    static ServiceAnswer nothingBut(int status) { return {status, "{}", std::nullopt}; }

    /// An entry of the store for channel 7-2 on AIR.
    static CRemindInfo entry(unsigned long uid, std::uint32_t start = comingStart,
                             std::uint32_t duration = 600) {
        CRemindInfo info;
        info.SetUid(uid);
        info.SetCreationMethod(CReminder::CREATED_MANUALLY);
        info.Set(7, 2, 0, TCChannel::GetDigitalChType(Air), 0);
        info.SetStartTime(start);
        info.SetDuration(duration);
        return info;
    }

    /// How `entry(uid)` of that start and end (clock times of 2026-08-23) is shown.
    static std::string shownEntry(int uid, const std::string& start, const std::string& end) {
        return R"({"id":"sch_id_)" + std::to_string(uid) +
               R"(","name":null,"type":"VIEW","status":"VIEW","channel_num":"7-2","channel_name":"News 24",)"
               R"("antenna":"AIR","synopsis":"","start":"2026-08-23T)" +
               start + R"(+00:00","end":"2026-08-23T)" + end +
               R"(+00:00","repeat":"ONCE","source_path":"/ws/epg2/channels/cid-000-7-2","storage_path":null,)"
               R"("recent_record_path":null,"method":"Manual","program_id":null})";
    }

    /// What was logged above trace, in order, but for the line that every reading of the clock leaves.
    std::vector<LogLine> said() const {
        std::vector<LogLine> lines;
        for (const LogLine& line : logged())
            if (line.first != Logger::Trace && line.second.rfind("Current Time (U) : ", 0) != 0)
                lines.push_back(line);
        return lines;
    }

    LogLine firstSaid() const { return said().empty() ? nothingSaid : said().front(); }
    LogLine lastSaid() const { return said().empty() ? nothingSaid : said().back(); }

    /// What was traced, in order.
    std::vector<std::string> traced() const {
        return log.messagesOf("Vexmoor/EpgSQLPluginVexmoorUtil", Logger::Trace);
    }

    const LogLine nothingSaid{Logger::Off, "(nothing)"};
    testing::StrictMock<MockReminder> store;
    RecordingWindow window;
    FakeRecorder recorder;
};

// What a mocked store does -----------------------------------------------------------------------------

/// Fills the entry at that argument and answers true.
template <std::size_t argument>
auto fillsWith(CRemindInfo info) {
    return testing::DoAll(testing::SetArgReferee<argument>(info), testing::Return(true));
}

/// Fills the list of overlapping entries.
inline auto overlapsWith(std::vector<CRemindInfo> items) {
    return testing::SetArgReferee<1>(items);
}

/// Adds an entry, keeps a copy of what it was asked to add in `added` and gives the entry that UID.
inline auto addsAs(unsigned long uid, CRemindInfo& added) {
    return [uid, &added](CRemindInfo& info, int) {
        added = info;
        info.SetUid(uid);
        return true;
    };
}

MATCHER_P(HasUid, uid, "") {
    return arg.UID() == static_cast<unsigned long>(uid);
}

MATCHER_P(HasEventId, eventId, "") {
    return arg.EventId() == eventId;
}

}  // namespace epgtest
