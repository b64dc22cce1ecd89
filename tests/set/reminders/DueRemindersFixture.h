// A reminder store, a window and a recorder, and the check that brings them together.
#pragma once

#include <string>
#include <vector>

#include "set/events/EventRing.h"
#include "set/reminders/DueReminders.h"
#include "tests/set/reminders/ReminderFixture.h"
#include "tests/support/FakeOrderTaker.h"

namespace epgset {

class DueRemindersFixture : public ReminderFixture {
protected:
    /// Brings the clock there and checks what is due.
    void checkAt(std::int64_t now) {
        clock_.setNow(now);
        due_->check(now);
    }

    /// Ends the set as a kill does, and starts it again.
    void restart() {
        due_.reset();
        open();
        recorder_.calls.clear();
        due_.emplace(store(), window_, recorder_);
    }

    CReminder::RESERVE_TYPE shownTypeOf(unsigned long uid) { return entry(uid).ReserveType(); }

    /// The events since the test began, each as "name path".
    std::vector<std::string> published() const {
        std::vector<std::string> lines;
        const auto since = events().after(firstEvent_);
        for (const Event& event : since.value())
            lines.push_back(event.name + " " + event.path);
        return lines;
    }

    GuideWindow window_;
    epgtest::FakeOrderTaker recorder_;
    std::optional<DueReminders> due_{std::in_place, store(), window_, recorder_};

private:
    const std::uint64_t firstEvent_ = events().last();
};

}  // namespace epgset
