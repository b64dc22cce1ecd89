// A request to book a channel by hand.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/plugin/ServiceTest.h"

namespace epgtest {

/// A field of a request.
using RequestField = char* ws_epg_schedule::*;

/// A request to view 7-2 on AIR from 01:00:00 to 01:30:00, to be changed at will.
class ManualBooking : public ServiceTest {
protected:
    static constexpr std::int64_t nine = 9 * 3600;

    ManualBooking() {
        set(&ws_epg_schedule::status, "VIEW");
        set(&ws_epg_schedule::channel_num, "7-2");
        set(&ws_epg_schedule::antenna, "AIR");
        set(&ws_epg_schedule::start, "2026-08-23T01:00:00Z");
        set(&ws_epg_schedule::end, "2026-08-23T01:30:00Z");
        set(&ws_epg_schedule::repeat, "ONCE");
    }

    void set(RequestField field, const char* text) {
        std::free(request.get()->*field);
        request.get()->*field = t_alloc_copy(text);
    }
    void setTimes(const char* start, const char* end) {
        set(&ws_epg_schedule::start, start);
        set(&ws_epg_schedule::end, end);
    }

    /// Fills `info` and answers the result.
    int fill() {
        log.clear();
        return t_set_manual_schedule_input(request.get(), &info);
    }

    /// Asserts that the request is refused with this one error.
    void expectRefused(const std::string& message) {
        info = CRemindInfo();
        EXPECT_EQ(fill(), -1);
        EXPECT_THAT(said(), testing::ElementsAre(LogLine(Logger::Error, message)));
        EXPECT_EQ(info.Duration(), 0U) << "nothing is filled in";
        EXPECT_THAT(window.tuned, testing::IsEmpty());
    }

    static std::string overlap(std::int64_t start, std::int64_t now, std::int64_t end) {
        return "(start:" + std::to_string(start) + " <= curr:" + std::to_string(now) +
               " <= end:" + std::to_string(end) + ")";
    }

    ScheduleRecord request{static_cast<ws_epg_schedule*>(std::calloc(1, sizeof(ws_epg_schedule)))};
    CRemindInfo info;
};

}  // namespace epgtest
