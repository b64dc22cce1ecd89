#include "set/epghost/Reminders.h"

#include <chrono>
#include <exception>

#include "host/Logger.h"
#include "set/epghost/Options.h"
#include "set/middleware/Clock.h"
#include "set/middleware/Television.h"

namespace epgset {
namespace {

constexpr std::chrono::milliseconds period{DueReminders::periodMilliseconds};

std::filesystem::path storeFile(const std::filesystem::path& stateFolder) {
    return stateFolder / ReminderStore::fileName;
}

/// The store, opened in the place where it is to live.
ReminderStore openStore(const std::filesystem::path& stateFolder) try {
    return ReminderStore(storeFile(stateFolder));
} catch (const DatabaseError& error) {
    throw StartError("state folder " + stateFolder.string() + ": " + error.what());
}

void checkNow(DueReminders& due) {
    try {
        due.check(clock().now());
    } catch (const std::exception& error) {
        Container::Logger::logger("set/epghost").error("reminders: %s", error.what());
    }
}

}  // namespace

Reminders::Reminders(const std::filesystem::path& stateFolder, OrderTaker& recorder)
    : store_(openStore(stateFolder)), due_(store_, guideWindow(), recorder) {
    guideChanged();  // since the set was on the last time
    checkNow(due_);
    useReminder(&store_);
    timer_.emplace([this] { checkNow(due_); }, period);
}

Reminders::~Reminders() {
    timer_.reset();
    due_.stop();
    useReminder(nullptr);
}

void Reminders::guideChanged() {
    store_.followGuide(clock().now());
}

std::vector<DueEntry> Reminders::nextDue(std::size_t count) const {
    return store_.nextDue(clock().now(), count);
}

}  // namespace epgset
