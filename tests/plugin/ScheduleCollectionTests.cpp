// All schedules: listed, and one added by hand.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/plugin/ServiceTest.h"

namespace epgtest {
namespace {

using testing::_;
using testing::DoAll;
using testing::ElementsAre;
using testing::InSequence;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::Return;
using testing::SetArgReferee;

/// A request to view 7-2 on AIR from 01:00:00 to 01:30:00, with further members behind.
std::string booking(const std::string& more = "", const std::string& status = "VIEW") {
    return R"({"status":")" + status +
           R"(","channel_num":"7-2","antenna":"air","start":"2026-08-23T01:00:00Z",)"
           R"("end":"2026-08-23T01:30:00Z","repeat":"ONCE")" +
           more + "}";
}

class ScheduleCollection : public ServiceTest {
protected:
    ServiceAnswer ask(const char* method, Body body = nullptr) {
        return answerWithLocation([&](const TestDocument& document, char** location) {
            return t_schedules(document, method, nullptr, body.data(), body.length(), location);
        });
    }
};

TEST_F(ScheduleCollection, TracesItsNameFirst) {
    ask("PUT");
    EXPECT_EQ(logged().front(), LogLine(Logger::Trace, "t_schedules"));
}

TEST_F(ScheduleCollection, NeedsAStore) {
    epgset::useReminder(nullptr);
    for (const char* method : {"GET", "POST", "PUT"})
        EXPECT_EQ(ask(method, booking()), nothingBut(204));
    EXPECT_THAT(said(), IsEmpty()) << "the method is not looked at";
}

TEST_F(ScheduleCollection, RefusesOtherMethods) {
    for (const char* method : {"PUT", "DELETE", "HEAD", "post", ""}) {
        log.clear();
        EXPECT_EQ(ask(method, booking()), nothingBut(204));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "t_channels_id does not support " +
                                                                     std::string(method) + " method")));
    }
    log.clear();
    EXPECT_EQ(ask(nullptr), nothingBut(204));
    EXPECT_THAT(said(),
                ElementsAre(LogLine(Logger::Warning, "t_channels_id does not support (null) method")));
}

// Listing -----------------------------------------------------------------------------------------------

/// Lists entries, and `more` than there are.
auto lists(std::vector<CRemindInfo> items, int more = 0) {
    const int count = static_cast<int>(items.size()) + more;
    return DoAll(SetArgReferee<0>(count), SetArgReferee<1>(items), Return(true));
}

TEST_F(ScheduleCollection, ListsAllEntriesInTheirOrder) {
    EXPECT_CALL(store, GetRemindItemByType(_, _, 2)).WillOnce(lists({entry(6, comingStart + 600), entry(5)}));
    EXPECT_EQ(ask("GET"), (ServiceAnswer{200,
                                         R"({"items":[)" + shownEntry(6, "01:10:00", "01:20:00") + "," +
                                             shownEntry(5, "01:00:00", "01:10:00") + "]}",
                                         std::nullopt}));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "GET all schedules")));
}

TEST_F(ScheduleCollection, ListsNothing) {
    EXPECT_CALL(store, GetRemindItemByType).WillOnce(lists({}));
    EXPECT_EQ(ask("GET"), (ServiceAnswer{200, R"({"items":[]})", std::nullopt}));
}

TEST_F(ScheduleCollection, IsListedWhateverTheBodyAndThePermission) {
    const NoUserScheduling refused;
    EXPECT_CALL(store, GetRemindItemByType).WillOnce(lists({}));
    EXPECT_EQ(ask("GET", R"({"status":"nonsense"})").status, 200);
}

TEST_F(ScheduleCollection, HasNoContentWhenTheStoreCannotList) {
    EXPECT_CALL(store, GetRemindItemByType).WillOnce(DoAll(SetArgReferee<0>(3), Return(false)));
    EXPECT_EQ(ask("GET"), nothingBut(204));
    EXPECT_EQ(lastSaid(), LogLine(Logger::Error, "GetRemindItemByType fail (3,0)"));
}

TEST_F(ScheduleCollection, HasNoContentWhenTheStoreListsAnotherNumberThanItSays) {
    for (const int more : {-1, 1}) {
        EXPECT_CALL(store, GetRemindItemByType).WillOnce(lists({entry(5), entry(6)}, more));
        EXPECT_EQ(ask("GET"), nothingBut(204));
        EXPECT_EQ(lastSaid(),
                  LogLine(Logger::Error, "GetRemindItemByType fail (" + std::to_string(2 + more) + ",2)"));
    }
}

// The list that the services share ------------------------------------------------------------------------

class ReminderList : public ServiceTest {
protected:
    static std::string shown(std::vector<CRemindInfo> items) {
        const TestDocument document;
        t_output_reminds(document, items);
        return document.json();
    }
};

TEST_F(ReminderList, LeavesOutEntriesWithoutAChannel) {
    CRemindInfo gone = entry(6);
    gone.Set(9, 4, 0, TCChannel::GetDigitalChType(Air), 0);
    CRemindInfo adrift = entry(7);
    adrift.Set(7, 2, 0, -1, 0);
    EXPECT_EQ(shown({gone, entry(5), adrift}),
              R"({"items":[)" + shownEntry(5, "01:00:00", "01:10:00") + "]}");
    const auto lines = said();
    EXPECT_THAT(lines, testing::Contains(LogLine(Logger::Warning, "No channel exists 2 9 4")));
    EXPECT_THAT(lines, testing::Contains(LogLine(Logger::Warning, "No channel exists -1 7 2")));
}

TEST_F(ReminderList, ShowsTheChannelOfTheEntrysAntenna) {
    CRemindInfo sport = entry(5);
    sport.Set(7, 0, 0, TCChannel::GetDigitalChType(Satellite), 0);
    EXPECT_THAT(shown({sport}), testing::HasSubstr(R"("channel_num":"7-2","channel_name":"Sport",)"
                                                   R"("antenna":"SATELLITE")"));
}

TEST_F(ReminderList, ShowsLocalTimesWithTheZone) {
    clock.setZone(540, false);
    EXPECT_THAT(shown({entry(5)}), testing::HasSubstr(R"("start":"2026-08-23T01:00:00+09:00",)"
                                                      R"("end":"2026-08-23T01:10:00+09:00")"));
}

TEST_F(ReminderList, StopsAtAnEntryForWhichThereIsNoRecord) {
    int emptyLists = 0;
    withEachAllocationFailing([&](int n, const FailingAllocation&) {
        const std::string list = shown({entry(5), entry(6)});
        EXPECT_THAT(list, Not(testing::StartsWith(R"({"items":[{"id":"sch_id_6")"))) << "allocation " << n;
        if (list == R"({"items":[]})") ++emptyLists;
    });
    EXPECT_GT(emptyLists, 0);
}

TEST_F(ReminderList, IsNotShownWithoutAnObject) {
    const TestDocument document;
    std::vector<CRemindInfo> items{entry(5)};
    epgset::failDocumentObjectsAfter(0);
    t_output_reminds(document, items);
    epgset::failDocumentObjectsAfter(-1);
    EXPECT_EQ(document.json(), "{}");
}

TEST_F(ReminderList, StopsAtAnEntryForWhichThereIsNoObject) {
    const TestDocument document;
    std::vector<CRemindInfo> items{entry(5), entry(6)};
    epgset::failDocumentObjectsAfter(2);
    t_output_reminds(document, items);
    epgset::failDocumentObjectsAfter(-1);
    EXPECT_EQ(document.json(), R"({"items":[)" + shownEntry(5, "01:00:00", "01:10:00") + "]}");
}

// Adding ------------------------------------------------------------------------------------------------

TEST_F(ScheduleCollection, CreatesAnEntry) {
    CRemindInfo added;
    EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(Return(false));
    EXPECT_CALL(store, AddRemindItem(_, 0)).WillOnce(addsAs(17, added));
    EXPECT_EQ(ask("POST", booking()), (ServiceAnswer{201, "{}", "/ws/epg/schedules/sch_id_17"}));
    EXPECT_EQ(added.CreationMethod(), CReminder::CREATED_MANUALLY);
    EXPECT_EQ(added.Major(), 7);
    EXPECT_EQ(added.StartTime(), comingStart);
    EXPECT_EQ(added.Duration(), 1800U);
}

TEST_F(ScheduleCollection, CreatesAnEntryForWhoDoesNotAskWhere) {
    Body body(booking());
    const TestDocument document;
    CRemindInfo added;
    EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(Return(false));
    EXPECT_CALL(store, AddRemindItem).WillOnce(addsAs(17, added));
    EXPECT_EQ(t_schedules(document, "POST", nullptr, body.data(), body.length(), nullptr), 201);
}

TEST_F(ScheduleCollection, IsChangedOnlyWhenTheUserMaySchedule) {
    const NoUserScheduling refused;
    EXPECT_EQ(ask("POST", R"({"status":"nonsense"})"), nothingBut(403));
}

TEST_F(ScheduleCollection, RefusesABodyThatIsNotValid) {
    EXPECT_EQ(ask("POST", nullptr), nothingBut(400));
    EXPECT_EQ(ask("POST", R"({"status":"nonsense"})"), nothingBut(400));
    EXPECT_EQ(ask("POST", booking(R"(,"force":"1")")), nothingBut(400));
    std::string everyDay = booking();
    everyDay.replace(everyDay.find("ONCE"), 4, "EVERYDAY");
    EXPECT_EQ(ask("POST", everyDay), nothingBut(400));
}

TEST_F(ScheduleCollection, RefusesARecordingOnASetThatCannotRecord) {
    recorder.model = 0;
    EXPECT_EQ(ask("POST", booking("", "RECORD")), nothingBut(403));
    EXPECT_EQ(ask("POST", R"({"status":"RECORD","repeat":"x"})"), nothingBut(400)) << "text before recorder";
}

TEST_F(ScheduleCollection, HasNoContentForABodyThatCannotBeParsed) {
    for (const char* body : {"", "{}", R"({"status":"VIEW")"}) {
        log.clear();
        EXPECT_EQ(ask("POST", body), nothingBut(204)) << body;
        EXPECT_EQ(lastSaid(), LogLine(Logger::Warning, "schedule data parsing failed"));
    }
}

TEST_F(ScheduleCollection, HasNoContentForARequestThatIsRefused) {
    const LogLine failed(Logger::Error, "Manual Remind Set Failed");
    for (const std::string& body :
         {std::string("{"), std::string(R"({"status":"VIEW"})"), booking("", "NONE"),
          booking("", "RECORDING"), booking(R"(,"antenna":"ROOF")"), booking(R"(,"channel_num":"9")"),
          booking(R"(,"start":"now")"), booking(R"(,"end":"2026-08-23T00:30:00Z")"),
          booking(R"(,"repeat":"SERIES")"), booking(R"(,"force":"true","end":"")")}) {
        log.clear();
        EXPECT_EQ(ask("POST", body), nothingBut(204)) << body;
        EXPECT_EQ(lastSaid(), failed) << body;
    }
}

TEST_F(ScheduleCollection, ConflictsWithAnotherEntry) {
    for (const char* more : {"", R"(,"force":"false")"}) {
        log.clear();
        EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(fillsWith<1>(entry(6)));
        EXPECT_EQ(ask("POST", booking(more)), nothingBut(409));
        EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Error, "=== Remind Duplicated. Confliction ==="),
                                        LogLine(Logger::Error, "EPG schedule conflict")));
    }
}

TEST_F(ScheduleCollection, ReplacesTheOtherEntryByForce) {
    CRemindInfo added;
    {
        const InSequence inOrder;
        EXPECT_CALL(store, ExistSameTimeRemindItem).WillOnce(fillsWith<1>(entry(6)));
        EXPECT_CALL(store, DeleteRemindItemByUid(6)).WillOnce(Return(1));
        EXPECT_CALL(store, AddRemindItem).WillOnce(addsAs(17, added));
    }
    EXPECT_EQ(ask("POST", booking(R"(,"force":"true")")).status, 201);
}

TEST_F(ScheduleCollection, SaysCreatedAlsoWhenTheStoreRefusesTheEntry) {
    EXPECT_CALL(store, ExistSameTimeRemindItem).Times(2).WillRepeatedly(Return(false));
    EXPECT_CALL(store, AddRemindItem).Times(2).WillRepeatedly(Return(false));
    EXPECT_EQ(ask("POST", booking()), nothingBut(201));
    EXPECT_EQ(ask("POST", booking(R"(,"id":"mine")")), (ServiceAnswer{201, "{}", "/ws/epg/schedules/mine"}))
        << "the client's own id stays in the request";
}

TEST_F(ScheduleCollection, TunesAtOnceToWhatIsOn) {
    clock.setNow(comingStart);
    EXPECT_EQ(ask("POST", booking()), nothingBut(201));
    EXPECT_THAT(window.tuned, ElementsAre(Pair(7, 2)));
}

// Only looking ------------------------------------------------------------------------------------------

TEST_F(ScheduleCollection, ShowsWhatOverlapsAndStoresNothing) {
    EXPECT_CALL(store, GetOverlappingRemindItems)
        .WillOnce([](const CRemindInfo& info, std::vector<CRemindInfo>& items) {
            EXPECT_EQ(info.StartTime(), comingStart);
            EXPECT_EQ(info.Duration(), 1800U);
            items = {entry(5)};
        });
    EXPECT_EQ(
        ask("POST", booking(R"(,"force":"check_overlap")")),
        (ServiceAnswer{200, R"({"items":[)" + shownEntry(5, "01:00:00", "01:10:00") + "]}", std::nullopt}));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Warning, "getting overlapped 1")));
}

TEST_F(ScheduleCollection, HasNoContentWhenOnlyLookingForARefusedRequest) {
    EXPECT_EQ(ask("POST", booking(R"(,"force":"check_overlap","antenna":"ROOF")")), nothingBut(204));
    EXPECT_THAT(said(), ElementsAre(LogLine(Logger::Error, "Invalid antenna:ROOF"),
                                    LogLine(Logger::Warning, "overlapped queried but data setting failed")));
}

TEST_F(ScheduleCollection, TunesAtOnceAlsoWhenOnlyLooking) {
    clock.setNow(comingStart);
    EXPECT_CALL(store, GetOverlappingRemindItems);
    EXPECT_EQ(ask("POST", booking(R"(,"force":"check_overlap")")),
              (ServiceAnswer{200, R"({"items":[]})", std::nullopt}));
    EXPECT_THAT(window.tuned, ElementsAre(Pair(7, 2)));
    EXPECT_THAT(logged(), testing::Contains(Pair(Logger::Warning, "getting overlapped 0")));
}

}  // namespace
}  // namespace epgtest
