// Booking a channel by hand: from the entry into the store.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "tests/plugin/ManualBookingTest.h"

namespace epgtest {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::InSequence;
using testing::IsEmpty;
using testing::Pair;
using testing::Return;

class ManualStoring : public ManualBooking {
protected:
    int add(int force) {
        request->force = force;
        return t_set_manual_schedule(request.get(), 0, 0);
    }
    int update(int force) {
        request->force = force;
        return t_set_manual_schedule(request.get(), 1, 5);
    }

    std::optional<std::string> requestId() const { return shown(request->id); }

    const LogLine conflict{Logger::Error, "=== Remind Duplicated. Confliction ==="};
    const LogLine removed{Logger::Debug, "=== Remind Duplicated. Previous is removed (6) ==="};
};

TEST_F(ManualStoring, AddsAnEntryAndNamesTheRequestAfterIt) {
    set(&ws_epg_schedule::id, "sch_id_1");
    CRemindInfo added;
    {
        const InSequence inOrder;
        EXPECT_CALL(store, ExistSameTimeRemindItem(HasUid(0), _)).WillOnce(Return(false));
        EXPECT_CALL(store, AddRemindItem(_, 0)).WillOnce(addsAs(17, added));
    }
    EXPECT_EQ(add(0), 0);
    EXPECT_EQ(requestId(), "sch_id_17");
    EXPECT_EQ(added.StartTime(), comingStart);
    EXPECT_THAT(traced(), ElementsAre("Scheduling parameter condition PASSED!!!!"));
    EXPECT_THAT(said(), ElementsAre(Pair(_, "=== Add Remind 'VIEW'. OK (sch_id:17) ===")));
}

TEST_F(ManualStoring, IsDoneAlsoWhenTheStoreRefusesToAdd) {
    EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(Return(false));
    EXPECT_CALL(store, AddRemindItem).WillOnce(Return(false));
    EXPECT_EQ(add(0), 0);
    EXPECT_EQ(requestId(), std::nullopt);
    EXPECT_THAT(said(), ElementsAre(Pair(_, "AddRemindItem Fail!")));
}

TEST_F(ManualStoring, ConflictsWithAnotherEntry) {
    EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(fillsWith<1>(entry(6)));
    EXPECT_EQ(add(0), 1);
    EXPECT_THAT(said(), ElementsAre(conflict));
    EXPECT_EQ(requestId(), std::nullopt);
}

TEST_F(ManualStoring, ReplacesTheOtherEntryByAnyForce) {
    for (const int force : {1, 2}) {
        log.clear();
        set(&ws_epg_schedule::channel_num, "7-2");
        CRemindInfo added;
        {
            const InSequence inOrder;
            EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(fillsWith<1>(entry(6)));
            EXPECT_CALL(store, DeleteRemindItemByUid(6)).WillOnce(Return(1));
            EXPECT_CALL(store, AddRemindItem).WillOnce(addsAs(17, added));
        }
        EXPECT_EQ(add(force), 0);
        EXPECT_THAT(said(), ElementsAre(removed, Pair(_, "=== Add Remind 'VIEW'. OK (sch_id:17) ===")));
    }
}

TEST_F(ManualStoring, UpdatesWithoutLookingForOverlaps) {
    for (const int force : {0, 1, 2}) {
        log.clear();
        set(&ws_epg_schedule::channel_num, "7-2");
        CRemindInfo updated;
        EXPECT_CALL(store, UpdateRemindItemByUid(5, _, 0, 1))
            .WillOnce(testing::DoAll(testing::SaveArg<1>(&updated), Return(true)));
        EXPECT_EQ(update(force), 0);
        EXPECT_EQ(updated.StartTime(), comingStart);
        EXPECT_EQ(updated.Duration(), 1800U);
        EXPECT_THAT(said(), ElementsAre(Pair(Logger::Debug,
                                             testing::StartsWith("=== Update Remind 'VIEW'. OK (sch_id:"))));
        EXPECT_EQ(requestId(), std::nullopt);
    }
}

TEST_F(ManualStoring, IsDoneAlsoWhenTheStoreRefusesToUpdate) {
    EXPECT_CALL(store, UpdateRemindItemByUid).WillOnce(Return(false));
    EXPECT_EQ(update(0), 0);
    EXPECT_THAT(said(), ElementsAre(Pair(_, "UpdateRemindItemByUid Fail!")));
}

TEST_F(ManualStoring, RefusesABadRequestBeforeTheStoreIsAsked) {
    set(&ws_epg_schedule::antenna, "ROOF");
    EXPECT_EQ(add(1), -1);
    EXPECT_EQ(update(1), -1);
    EXPECT_THAT(traced(), IsEmpty());
}

TEST_F(ManualStoring, StopsAfterTuningAtOnce) {
    clock.setNow(comingStart);
    EXPECT_EQ(add(0), 0);
    set(&ws_epg_schedule::channel_num, "7-2");
    EXPECT_EQ(add(1), 0);
    set(&ws_epg_schedule::channel_num, "7-2");
    EXPECT_EQ(update(0), 0);
    EXPECT_THAT(window.tuned, ElementsAre(Pair(7, 2), Pair(7, 2), Pair(7, 2)));
    EXPECT_EQ(requestId(), std::nullopt);
}

}  // namespace
}  // namespace epgtest
