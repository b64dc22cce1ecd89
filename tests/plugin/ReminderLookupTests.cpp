// Finding an entry of the reminder store by its identifier.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/plugin/AdapterTest.h"
#include "tests/support/ForwardingTelevision.h"
#include "tests/support/TestReminders.h"

namespace epgtest {
namespace {

using Container::Logger;
using testing::ElementsAre;
using testing::IsEmpty;

/// Keeps which entries are asked for.
class AskedReminders : public TestReminders {
public:
    bool GetRemindItemByUid(unsigned long uid, CRemindInfo& info) override {
        asked.push_back(static_cast<int>(uid));
        return TestReminders::GetRemindItemByUid(uid, info);
    }

    /// Keeps an entry of that UID for a channel.
    void keep(unsigned long uid, int tvMode, short major, short minor) {
        book(static_cast<int>(uid), uid, RESERVE_VIEW, REPEAT_ONCE)
            .Set(major, minor, 0, TCChannel::GetDigitalChType(tvMode), 0);
    }

    std::vector<int> asked;
};

class ReminderById : public AdapterTest {
protected:
    /// The entry's UID; nothing for no entry.
    static std::optional<unsigned long> uidOf(const char* id) {
        const std::unique_ptr<CRemindInfo> info(t_get_cached_schedule_by_id(id, nullptr));
        return info == nullptr ? std::nullopt : std::optional(info->UID());
    }

    /// The entry's channel as an identifier; nothing for no entry.
    static std::optional<std::string> channelOf(const char* id) {
        TCChannel* channel = nullptr;
        const std::unique_ptr<CRemindInfo> info(t_get_cached_schedule_by_id(id, &channel));
        if (info == nullptr) return std::nullopt;
        const std::unique_ptr<TCChannel> owned(channel);
        if (channel == nullptr) return "(an entry without its channel)";
        return taken(t_get_channel_id(channel->TvMode(), channel->Major(), channel->Minor()));
    }
};

TEST_F(ReminderById, IsFoundByTheNumberBehindThePrefix) {
    AskedReminders reminders;
    reminders.keep(5, Air, 7, 0);
    reminders.keep(12, Air, 8, 0);
    EXPECT_EQ(uidOf("sch_id_5"), 5U);
    EXPECT_EQ(uidOf("sch_id_12"), 12U);
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ReminderById, ReadsTheNumberAsFarAsItGoes) {
    AskedReminders reminders;
    const struct {
        const char* id;
        int uid;
    } examples[] = {
        {"sch_id_5x", 5},   {"sch_id_abc", 0}, {"sch_id_", 0},         {"sch_id_ 5", 5},
        {"sch_id_005", 5},  {"sch_id_+5", 5},  {"sch_id_-1", -1},      {"sch_id_2147483647", 2147483647},
        {"sch_id_0x10", 0}, {"sch_id_5.9", 5}, {"sch_id_sch_id_5", 0},
    };
    for (const auto& [id, uid] : examples) {
        reminders.asked.clear();
        EXPECT_EQ(uidOf(id), std::nullopt);
        EXPECT_THAT(reminders.asked, ElementsAre(uid)) << id;
    }
}

TEST_F(ReminderById, CutsAHugeNumberToAnInt) {
    const AskedReminders reminders;
    EXPECT_EQ(uidOf("sch_id_99999999999"), std::nullopt);
    EXPECT_THAT(reminders.asked, ElementsAre(static_cast<int>(std::strtol("99999999999", nullptr, 10))));
}

TEST_F(ReminderById, MustBeginWithThePrefix) {
    AskedReminders reminders;
    reminders.keep(5, Air, 7, 0);
    for (const char* id :
         {"", "5", "SCH_ID_5", "sch_id", "sch_id5", " sch_id_5", "Sch_id_5", "pid-000-7-0-5"})
        EXPECT_EQ(uidOf(id), std::nullopt) << id;
    EXPECT_THAT(reminders.asked, IsEmpty());
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ReminderById, NeedsAStore) {
    EXPECT_EQ(uidOf("sch_id_5"), std::nullopt);
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ReminderById, WarnsWhenTheStoreHasNone) {
    const AskedReminders reminders;
    EXPECT_EQ(uidOf("sch_id_5"), std::nullopt);
    EXPECT_EQ(channelOf("sch_id_-1"), std::nullopt);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Warning, "GetRemindItemByUid fail (uid:5)"),
                                      LogLine(Logger::Warning, "GetRemindItemByUid fail (uid:-1)")));
    EXPECT_EQ(log.records()[0].format, "GetRemindItemByUid fail (uid:%d)");
}

TEST_F(ReminderById, ComesWithItsChannel) {
    TestGuide guide;
    guide.channel(Air, 7, 2);
    guide.channel(Satellite, 7, 2);
    guide.channel(Bs, 9, 4);
    guide.use();
    AskedReminders reminders;
    reminders.keep(5, Satellite, 7, 2);
    reminders.keep(6, Bs, 9, 0);
    EXPECT_EQ(channelOf("sch_id_5"), "cid-003-7-2");
    EXPECT_EQ(channelOf("sch_id_6"), "cid-022-9-4") << "the first channel of the major";
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ReminderById, WhoseChannelIsGoneIsNone) {
    TestGuide guide;
    guide.channel(Satellite, 7, 2);
    guide.use();
    AskedReminders reminders;
    reminders.keep(5, Satellite, 7, 3);
    EXPECT_EQ(channelOf("sch_id_5"), std::nullopt);
    EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Warning, "No channel exists 7 7 3")));
    EXPECT_EQ(log.records()[0].format, "No channel exists %d %d %d");
}

TEST_F(ReminderById, WhoseModeIsGoneIsNone) {
    AskedReminders reminders;
    reminders.keep(5, Cs, 700, -1);
    EXPECT_EQ(channelOf("sch_id_5"), std::nullopt);
    EXPECT_THAT(
        logged(),
        ElementsAre(LogLine(Logger::Error, "======= No Cached channel or Channel Scan Failed!! ============"),
                    LogLine(Logger::Warning, "No channel exists 13 700 -1")));
}

TEST_F(ReminderById, IsFoundWithoutItsChannelWhenNobodyAsksForThat) {
    const ForwardingTelevision television;
    AskedReminders reminders;
    reminders.keep(5, Satellite, 7, 3);
    EXPECT_EQ(uidOf("sch_id_5"), 5U);
    EXPECT_THAT(television.sourceTypesAsked, IsEmpty());
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ReminderById, IsACopyThatTheReceiverOwns) {
    AskedReminders reminders;
    reminders.keep(5, Air, 7, 0);
    const std::unique_ptr<CRemindInfo> first(t_get_cached_schedule_by_id("sch_id_5", nullptr));
    const std::unique_ptr<CRemindInfo> second(t_get_cached_schedule_by_id("sch_id_5", nullptr));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    first->SetUid(6);
    EXPECT_EQ(second->UID(), 5U);
    EXPECT_EQ(uidOf("sch_id_5"), 5U);
}

}  // namespace
}  // namespace epgtest
