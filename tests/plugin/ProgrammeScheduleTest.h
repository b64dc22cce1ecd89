// The schedule of one programme, asked for and set.
#pragma once

#include <string>

#include "tests/plugin/ServiceTest.h"

namespace epgtest {

/// Requests to view and to record.
constexpr const char* view = R"({"status":"VIEW"})";
constexpr const char* recording = R"({"status":"RECORD"})";

/// Requests to the schedule of one programme.
class ProgrammeSchedule : public ServiceTest {
protected:
    ServiceAnswer ask(const char* method, const char* id, Body body = nullptr) {
        return answerWithLocation([&](const TestDocument& document, char** location) {
            return t_programs_id_schedule(document, method, id, body.data(), body.length(), location);
        });
    }

    /// Lets the store take the programme to come, and answers the entry that it was given.
    CRemindInfo added(const char* body) {
        CRemindInfo info;
        EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(testing::Return(false));
        EXPECT_CALL(store, AddRemindItem(testing::_, 0)).WillOnce(addsAs(17, info));
        EXPECT_EQ(ask("POST", comingId, body).status, 201);
        return info;
    }
};

}  // namespace epgtest
