// The middleware's reminder store.
#pragma once

#include <vector>

#include "host/Export.h"

class CRemindInfo;
class TCProgram;

/// The store of reminders and recordings. There is one, or none when the set cannot keep any. May be
/// called from any thread.
class HOST_API CReminder {
public:
    // Of the middleware's values only those that somebody here acts on have names; an entry may hold others.

    /// What an entry does when it comes due.
    enum RESERVE_TYPE : int {
        RESERVE_VIEW = 0,
        RESERVE_RECORD = 1,
        RESERVE_RECORDING = 3,  ///< a recording that is running
        RESERVE_SERIES = 9      ///< records each programme of a series
    };

    enum REMINDER_REPEAT_TYPE : int {
        REPEAT_ONCE = 0,
        REPEAT_EVERYDAY = 1,
        REPEAT_WEEKDAYS = 2,
        REPEAT_WEEKEND = 3,
        REPEAT_MANUAL = 4,  ///< on the days of CRemindInfo::ManualRepeat
        REPEAT_INVALID = 5  ///< what no entry has: the result of reading an unknown text
    };

    enum CREATION_TYPE : int { CREATED_FROM_EPG = 0, CREATED_MANUALLY = 1 };

    /// The store, owned by the middleware; null when there is none.
    static CReminder* GetInstance();

    virtual ~CReminder();

    /// Fills `info` with the entry made for `program` and answers whether there is one.
    virtual bool FindRemindItemFromProgram(const TCProgram& program, CRemindInfo& info) = 0;

    /// Fills `info` with the entry of that UID and answers whether there is one.
    virtual bool GetRemindItemByUid(unsigned long uid, CRemindInfo& info) = 0;

    /// Fills `items` with the entries of a kind (2: all of them) and `count` with their number; false on
    /// failure.
    virtual bool GetRemindItemByType(int& count, std::vector<CRemindInfo>& items, int kind) = 0;

    /// Adds an entry and assigns its UID; false when the store refuses it. `reserved` is 0.
    virtual bool AddRemindItem(CRemindInfo& info, int reserved) = 0;

    /// Replaces the entry of that UID, which it keeps; false when the store refuses it. `reserved` is 0,
    /// `byUser` 1.
    virtual bool UpdateRemindItemByUid(unsigned long uid, const CRemindInfo& info, int reserved,
                                       int byUser) = 0;

    /// Removes the entry of that UID; 1 when it did.
    virtual int DeleteRemindItemByUid(unsigned long uid) = 0;

    /// The same at the user's request; non-zero when it did.
    virtual int UserDeleteRemindItemByUid(unsigned long uid) = 0;

    /// Whether an entry other than `info` itself (its UID) overlaps it; fills `other` with the first.
    virtual bool ExistSameTimeRemindItem(const CRemindInfo& info, CRemindInfo& other) = 0;

    /// Fills `items` with the entries other than `info` itself that overlap it.
    virtual void GetOverlappingRemindItems(const CRemindInfo& info, std::vector<CRemindInfo>& items) = 0;
};
