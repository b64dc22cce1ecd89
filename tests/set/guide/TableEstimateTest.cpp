#include "set/guide/TableEstimate.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "set/middleware/ReceptionModes.h"

namespace epgset {
namespace {

constexpr const char* kCreate =
    "CREATE TABLE myView (ChannelId varchar(32), ChannelName varchar(255), ChannelPath varchar(255), "
    "ChannelNumber "
    "varchar(255), AntennaType varchar(32), ScrambledFlag varchar(5), ServiceType varchar(10), EventId "
    "varchar(32), ProgramName varchar(255), ProgramStartTime INTEGER UNSIGNED, ProgramEndTime INTEGER "
    "UNSIGNED, "
    "ScheduleId varchar(32), ScheduleType varchar(32), Repeat varchar(32));";

/// A real table, filled as the plug-in fills its own.
class RealTable {
public:
    RealTable() {
        sqlite3* opened = nullptr;
        sqlite3_open(":memory:", &opened);
        database_.reset(opened);
        sqlite3_exec(opened, kCreate, nullptr, nullptr, nullptr);
        sqlite3_exec(opened, "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(opened, "INSERT INTO myView values(?,?,?,?,?,?,?,?,?,?,?,?,?,?)", -1, &insert_,
                           nullptr);
    }
    ~RealTable() { sqlite3_finalize(insert_); }
    RealTable(const RealTable&) = delete;
    RealTable& operator=(const RealTable&) = delete;

    void addProgramme(const Channel& channel, const std::string& title, std::uint32_t start, int eventId) {
        const std::string number = numberOf(channel);
        const std::string event = "pid-" + mode(channel) + "-" + std::to_string(channel.major) + "-" +
                                  std::to_string(channel.minor) + "-" + std::to_string(eventId);
        row(channel,
            {event, title.empty() ? event : title, std::to_string(start), std::to_string(start + 1800)});
    }

    void addStub(const Channel& channel) { row(channel, {"", "No information", "", ""}); }

    std::size_t pages() const {
        sqlite3_exec(database_.get(), "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_stmt* query = nullptr;
        sqlite3_prepare_v2(database_.get(), "PRAGMA page_count", -1, &query, nullptr);
        EXPECT_EQ(sqlite3_step(query), SQLITE_ROW);
        const auto count = static_cast<std::size_t>(sqlite3_column_int64(query, 0));
        sqlite3_finalize(query);
        return count;
    }

private:
    struct Closer {
        void operator()(sqlite3* database) const { sqlite3_close_v2(database); }
    };

    static std::string mode(const Channel& channel) {
        const std::string digits = std::to_string(channel.tvMode);
        return std::string(3 - digits.size(), '0') + digits;
    }

    static std::string numberOf(const Channel& channel) {
        return std::to_string(channel.major) + (channel.minor > 0 ? "-" + std::to_string(channel.minor) : "");
    }

    void row(const Channel& channel, const std::array<std::string, 4>& programme) {
        const std::string id = "cid-" + mode(channel) + "-" + numberOf(channel);
        const auto antenna =
            receptionModes()[static_cast<std::size_t>(receptionModeByTvMode(channel.tvMode))].name;
        const std::array<std::string, 14> values{id,
                                                 channel.name.empty() ? id : channel.name,
                                                 "/ws/epg2/channels/" + id,
                                                 numberOf(channel),
                                                 std::string(antenna),
                                                 channel.scrambled ? "true" : "false",
                                                 channel.serviceType == 5 ? "SCRAMBLE" : "TV",
                                                 programme[0],
                                                 programme[1],
                                                 programme[2],
                                                 programme[3],
                                                 "",
                                                 "",
                                                 ""};
        int column = 0;
        for (const std::string& value : values) {
            sqlite3_bind_text(insert_, ++column, value.data(), static_cast<int>(value.size()),
                              SQLITE_TRANSIENT);
        }
        ASSERT_EQ(sqlite3_step(insert_), SQLITE_DONE);
        sqlite3_reset(insert_);
    }

    std::unique_ptr<sqlite3, Closer> database_;
    sqlite3_stmt* insert_ = nullptr;
};

Channel channelOf(int index) {
    Channel channel;
    channel.tvMode = index % 2 == 0 ? 0 : 5;
    channel.major = static_cast<std::int16_t>(index + 1);
    channel.minor = static_cast<std::int16_t>(index % 3);
    channel.scrambled = index % 2 == 0;
    channel.serviceType = index % 4 == 0 ? 5 : 1;
    channel.name = index % 7 == 0 ? "" : "Channel " + std::to_string(index);
    return channel;
}

/// Titles of 0 to 2 * `average` bytes, in a fixed order that looks like none.
std::string titleOf(int index, std::size_t average) {
    const auto length = (static_cast<std::size_t>(index) * 2654435761U >> 7) % (2 * average + 1);
    return std::string(length, 'x');
}

class TableEstimateTest : public testing::TestWithParam<std::size_t> {};

TEST_P(TableEstimateTest, IsNeverBelowARealTableAndCloseToIt) {
    const std::size_t average = GetParam();
    const int programmes = average > 1000 ? 1500 : 20000;
    RealTable table;
    TableEstimate estimate;
    for (int index = 0; index < programmes; ++index) {
        const Channel channel = channelOf(index / 200);
        const std::string title = titleOf(index, average);
        if (index % 200 == 0 && index % 3 == 0) {
            table.addStub(channel);
            estimate.addRow(stubRowBytes(channel));
        }
        table.addProgramme(channel, title, 1787400000U + 1800U * static_cast<unsigned>(index), 10000 + index);
        estimate.addRow(programmeRowBytes(channel, title));
    }
    const std::size_t real = table.pages();
    EXPECT_GE(estimate.pages(), real);
    EXPECT_LE(static_cast<double>(estimate.pages()), 1.03 * static_cast<double>(real) + 4);
}

INSTANTIATE_TEST_SUITE_P(AverageTitleBytes, TableEstimateTest, testing::Values(0, 25, 60, 400, 1500, 6000));

TEST(TableEstimate, HoldsForFewRows) {
    for (const int rows : {0, 1, 2, 25, 26, 60, 100}) {
        RealTable table;
        TableEstimate estimate;
        for (int index = 0; index < rows; ++index) {
            table.addProgramme(channelOf(1), "A title", 1787400000U, 12345);
            estimate.addRow(programmeRowBytes(channelOf(1), "A title"));
        }
        EXPECT_GE(estimate.pages(), table.pages()) << rows;
    }
}

}  // namespace
}  // namespace epgset
