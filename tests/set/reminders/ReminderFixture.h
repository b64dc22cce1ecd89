// A reminder store in a folder of the test's own, with a clock and a guide.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/CRemindInfo.h"
#include "host/CReminder.h"
#include "set/log/LogCapture.h"
#include "set/middleware/Clock.h"
#include "set/middleware/ManualClock.h"
#include "set/reminders/ReminderStore.h"
#include "tests/set/middleware/GuideInUse.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset {

/// Channel types of two antennas.
enum ChannelType { Air = 2, Satellite = 7 };

/// An entry made by hand, for channel 7 of the first antenna.
inline CRemindInfo manualEntry(std::uint32_t start, std::uint32_t duration,
                               CReminder::RESERVE_TYPE type = CReminder::RESERVE_RECORD) {
    CRemindInfo info;
    info.SetCreationMethod(CReminder::CREATED_MANUALLY);
    info.SetReserveType(type);
    info.Set(7, 0, 0, Air, 1);
    info.SetStartTime(start);
    info.SetDuration(duration);
    return info;
}

inline std::vector<unsigned long> uidsOf(const std::vector<CRemindInfo>& items) {
    std::vector<unsigned long> uids;
    for (const CRemindInfo& info : items)
        uids.push_back(info.UID());
    return uids;
}

class ReminderFixture : public ::testing::Test {
protected:
    ReminderFixture() {
        useClock(&clock_);
        open();
    }
    ~ReminderFixture() override {
        useClock(nullptr);
        useGuide(nullptr);
    }

    std::filesystem::path file() const { return folder_.path() / "reminders.db"; }

    ReminderStore& store() { return *store_; }

    /// Opens the store, again where it is open, as a new start of the set does.
    void open() {
        close();
        store_ = std::make_unique<ReminderStore>(file());
    }

    void close() { store_.reset(); }

    /// The UID of a new entry; 0 when it was refused.
    unsigned long add(CRemindInfo info) { return store().AddRemindItem(info, 0) ? info.UID() : 0; }

    std::vector<CRemindInfo> all() {
        int count = -1;
        std::vector<CRemindInfo> items;
        EXPECT_TRUE(store().GetRemindItemByType(count, items, 2));
        EXPECT_EQ(count, static_cast<int>(items.size()));
        return items;
    }

    CRemindInfo entry(unsigned long uid) {
        CRemindInfo info;
        EXPECT_TRUE(store().GetRemindItemByUid(uid, info)) << uid;
        return info;
    }

    LogCapture log_{Container::Logger::Warning};
    ManualClock clock_{1'000'000};
    test::TemporaryFolder folder_;

private:
    std::unique_ptr<ReminderStore> store_;
};

}  // namespace epgset
