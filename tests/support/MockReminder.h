// A reminder store whose every call a test expects.
#pragma once

#include <gmock/gmock.h>

#include <vector>

#include "host/CRemindInfo.h"
#include "host/TCProgram.h"
#include "set/middleware/Television.h"

namespace epgtest {

/// While it lives, the middleware's reminder store. It holds nothing and refuses every change, but for what
/// a test has it answer.
class MockReminder : public CReminder {
public:
    MockReminder() { epgset::useReminder(this); }
    ~MockReminder() override { epgset::useReminder(nullptr); }
    MockReminder(const MockReminder&) = delete;
    MockReminder& operator=(const MockReminder&) = delete;

    MOCK_METHOD(bool, FindRemindItemFromProgram, (const TCProgram& program, CRemindInfo& info), (override));
    MOCK_METHOD(bool, GetRemindItemByUid, (unsigned long uid, CRemindInfo& info), (override));
    MOCK_METHOD(bool, GetRemindItemByType, (int& count, std::vector<CRemindInfo>& items, int kind),
                (override));
    MOCK_METHOD(bool, AddRemindItem, (CRemindInfo & info, int reserved), (override));
    MOCK_METHOD(bool, UpdateRemindItemByUid,
                (unsigned long uid, const CRemindInfo& info, int reserved, int byUser), (override));
    MOCK_METHOD(int, DeleteRemindItemByUid, (unsigned long uid), (override));
    MOCK_METHOD(int, UserDeleteRemindItemByUid, (unsigned long uid), (override));
    MOCK_METHOD(bool, ExistSameTimeRemindItem, (const CRemindInfo& info, CRemindInfo& other), (override));
    MOCK_METHOD(void, GetOverlappingRemindItems, (const CRemindInfo& info, std::vector<CRemindInfo>& items),
                (override));
};

}  // namespace epgtest
