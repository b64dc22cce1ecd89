// Bookings on a disk that takes nothing more: full, read-only or broken.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include "tests/service/HourlyGuide.h"
#include "tests/support/EpghostProcess.h"
#include "tests/support/HttpClient.h"
#include "tests/support/SmallDisk.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset::test {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

/// A set with an hourly guide and a store of its own, which is started again at will. Two bookings are made
/// before its disk fails.
class FailingDisk : public ::testing::Test {
protected:
    /// Makes the disk fail; false when that cannot be done.
    virtual void fail() = 0;
    virtual void recover() = 0;
    virtual fs::path state() const { return folder_.path() / "state"; }
    virtual EpghostProcess::Arguments environment() const { return {}; }

    void start() {
        fs::create_directories(state());
        const fs::path guide = folder_.path() / "guide.xml";
        if (!fs::exists(guide)) folder_.write("guide.xml", hourlyGuide());
        process_.emplace(EpghostProcess::Arguments{"--state", state().string(), "--port", "0", "--now",
                                                   "2026-08-23T12:30:00Z", "--guide", guide.string()},
                         environment());
        client_.emplace(process_->waitUntilReady());
    }

    void restart() {
        EXPECT_EQ(0, process_->stop());
        start();
    }

    /// A set with a booking of the programme at 20:00 and one by hand at 22:00.
    void startWithBookings() {
        start();
        ASSERT_EQ(201, send("POST", programme("20"), R"({"status":"VIEW"})"));
        ASSERT_EQ(201, send("POST", "schedules", manual("22")));
        bookings_ = list();
        ASSERT_THAT(bookings_, AllOf(HasSubstr("\"items_total\":2"), HasSubstr("Hour 20")));
    }

    int send(const std::string& method, const std::string& path, const std::string& body) {
        return client_->send(method, "/ws/epg2/" + path, body).status;
    }

    std::string list() { return client_->get("/ws/epg2/schedules").body; }

    /// The path of the schedule of the programme at that hour.
    std::string programme(const std::string& hour) {
        rapidjson::Document document;
        document.Parse(client_->get("/ws/epg2/programs?select=id&name=" + hour).body.c_str());
        return std::string("programs/") + document["items"][0]["id"].GetString() + "/schedule";
    }

    static std::string manual(const std::string& hour) {
        return R"({"status":"VIEW","channel_num":"1","antenna":"AIR","start":"2026-08-23T)" + hour +
               R"(:00:00+00:00","end":"2026-08-23T)" + hour + R"(:30:00+00:00","repeat":"ONCE"})";
    }

    /// The identifier of the booking by hand.
    std::string manualId() {
        rapidjson::Document document;
        document.Parse(list().c_str());
        for (const auto& item : document["items"].GetArray())
            if (std::string(item["program_name"].GetString()) == "scheduled_event")
                return item["id"].GetString();
        return "(none)";
    }

    /// Each kind of change, with the answer for a store that refuses it; nothing is changed.
    void expectChangesRefused() {
        const std::string byHand = "schedules/" + manualId();
        EXPECT_EQ(200, send("POST", programme("21"), R"({"status":"VIEW"})")) << "no 201: nothing is made";
        EXPECT_EQ(201, send("POST", "schedules", manual("23"))) << "as for a booking that is made";
        EXPECT_EQ(200, send("PUT", byHand, manual("23"))) << "as for a change that is made";
        EXPECT_EQ(404, send("DELETE", byHand, ""));
        EXPECT_EQ(200, send("DELETE", programme("20"), "")) << "as where there is nothing to clear";
        EXPECT_EQ(bookings_, list());
        EXPECT_TRUE(process_->waitForError("A reminder cannot be written: ")) << process_->errors();
        EXPECT_EQ(200, client_->get("/ws/epg2/channels").status);
        EXPECT_EQ(200, client_->get("/set/status").status);
    }

    /// One more booking is made, and all of them are there after a restart.
    void expectBookingsKept() {
        EXPECT_EQ(201, send("POST", programme("21"), R"({"status":"VIEW"})"));
        const std::string after = list();
        EXPECT_THAT(after, HasSubstr("\"items_total\":3"));
        restart();
        EXPECT_EQ(after, list());
    }

    TemporaryFolder folder_;
    std::optional<EpghostProcess> process_;
    std::optional<HttpClient> client_;
    std::string bookings_;
};

/// The disk by the error number of what is written to it.
class DiskWithError : public FailingDisk, public ::testing::WithParamInterface<int> {
protected:
    void fail() override { folder_.write("fault", std::to_string(GetParam())); }
    void recover() override { fs::remove(folder_.path() / "fault"); }

    EpghostProcess::Arguments environment() const override {
        const char* const sanitizer = std::getenv("ASAN_OPTIONS");
        return {"LD_PRELOAD=" EPG_DISK_FAULT_LIBRARY, "EPG_DISK_FAULT=" + (folder_.path() / "fault").string(),
                "ASAN_OPTIONS=verify_asan_link_order=0:" + std::string(sanitizer ? sanitizer : "")};
    }
};

TEST_P(DiskWithError, RefusesChangesAndKeepsEarlierBookings) {
    startWithBookings();
    fail();
    expectChangesRefused();
    recover();
    expectBookingsKept();
}

TEST_P(DiskWithError, KeepsEarlierBookingsOverAStopWhileItFails) {
    startWithBookings();
    fail();
    EXPECT_EQ(404, send("DELETE", "schedules/" + manualId(), ""));
    EXPECT_EQ(0, process_->stop());
    recover();
    start();
    EXPECT_EQ(bookings_, list());
}

INSTANTIATE_TEST_SUITE_P(AllKinds, DiskWithError, ::testing::Values(ENOSPC, EROFS, EIO),
                         [](const auto& error) {
                             return error.param == ENOSPC  ? "Full"
                                    : error.param == EROFS ? "ReadOnly"
                                                           : "Broken";
                         });

/// The state folder, taken away while the set runs, and put back.
class VanishedFolder : public FailingDisk {
protected:
    void fail() override { fs::rename(state(), away()); }
    void recover() override {
        fs::remove_all(state());
        fs::rename(away(), state());
    }

private:
    fs::path away() const { return folder_.path() / "away"; }
};

TEST_F(VanishedFolder, RefusesChangesUntilItIsBackAndKeepsEarlierBookings) {
    startWithBookings();
    fail();
    expectChangesRefused();
    EXPECT_TRUE(process_->waitForError("the file is gone")) << process_->errors();
    recover();
    expectBookingsKept();
}

TEST_F(VanishedFolder, TakesNoChangesIntoAFileThatStandsInItsPlace) {
    startWithBookings();
    fail();
    fs::create_directories(state() / "reminders.db");
    expectChangesRefused();
    recover();
    EXPECT_EQ(201, send("POST", programme("21"), R"({"status":"VIEW"})"));
}

/// A small disk in memory, which is full when a file takes the rest of it.
class FullDisk : public FailingDisk {
protected:
    void SetUp() override {
        if (!disk_.mounted()) GTEST_SKIP() << "no disk may be mounted here";
    }

    void TearDown() override { process_.reset(); }

    fs::path state() const override { return folder_.path() / "disk" / "state"; }

    void fail() override {
        const std::string block(512, 'x');
        std::ofstream filler(filler_);
        while (filler << block << std::flush) {
        }
    }
    void recover() override { fs::remove(filler_); }

private:
    const fs::path filler_ = folder_.path() / "disk" / "filler";
    const SmallDisk disk_{folder_.path() / "disk", 512 * 1024};
};

TEST_F(FullDisk, RefusesChangesWhenItIsFullAndKeepsEarlierBookings) {
    startWithBookings();
    fail();
    expectChangesRefused();
    recover();
    expectBookingsKept();
}

}  // namespace
}  // namespace epgset::test
