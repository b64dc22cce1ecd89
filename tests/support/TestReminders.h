// A reminder store of the test's own.
#pragma once

#include <map>
#include <vector>

#include "host/CRemindInfo.h"
#include "host/TCProgram.h"
#include "set/middleware/Television.h"

namespace epgtest {

/// While it lives, the middleware's reminder store; holds entries by the event ids of their programmes.
class TestReminders : public CReminder {
public:
    TestReminders() { epgset::useReminder(this); }
    ~TestReminders() override { epgset::useReminder(nullptr); }
    TestReminders(const TestReminders&) = delete;
    TestReminders& operator=(const TestReminders&) = delete;

    /// Books the programmes with that event id.
    CRemindInfo& book(int eventId, unsigned long uid, RESERVE_TYPE type, REMINDER_REPEAT_TYPE repeat) {
        CRemindInfo& info = byEvent_[eventId];
        info.SetUid(uid);
        info.SetEventId(eventId);
        info.SetReserveType(type);
        info.SetRepeat(repeat, 0);
        return info;
    }

    bool FindRemindItemFromProgram(const TCProgram& program, CRemindInfo& info) override {
        const auto found = byEvent_.find(program.EventId());
        if (found == byEvent_.end()) return false;
        info = found->second;
        return true;
    }

    bool GetRemindItemByUid(unsigned long uid, CRemindInfo& info) override {
        for (const auto& [eventId, entry] : byEvent_) {
            if (entry.UID() != uid) continue;
            info = entry;
            return true;
        }
        return false;
    }

    bool GetRemindItemByType(int& count, std::vector<CRemindInfo>& items, int /*kind*/) override {
        items.clear();
        for (const auto& [eventId, entry] : byEvent_)
            items.push_back(entry);
        count = static_cast<int>(items.size());
        return true;
    }

    // This store is filled with book() alone.
    bool AddRemindItem(CRemindInfo& /*info*/, int /*reserved*/) override { return false; }
    bool UpdateRemindItemByUid(unsigned long /*uid*/, const CRemindInfo& /*info*/, int /*reserved*/,
                               int /*byUser*/) override {
        return false;
    }
    int DeleteRemindItemByUid(unsigned long /*uid*/) override { return 0; }
    int UserDeleteRemindItemByUid(unsigned long /*uid*/) override { return 0; }
    bool ExistSameTimeRemindItem(const CRemindInfo& /*info*/, CRemindInfo& /*other*/) override {
        return false;
    }
    void GetOverlappingRemindItems(const CRemindInfo& /*info*/, std::vector<CRemindInfo>& items) override {
        items.clear();
    }

private:
    std::map<int, CRemindInfo> byEvent_;
};

}  // namespace epgtest
