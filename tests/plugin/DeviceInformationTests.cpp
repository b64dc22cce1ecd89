// The set's device identity, read from the description that it serves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>

#include "host/UPnP.h"
#include "tests/plugin/DeviceDescription.h"
#include "tests/plugin/ServiceTest.h"
#include "tests/support/TemporaryFolder.h"

namespace {

/// What the control point answers in place of its own answer.
struct WebRootAnswer {
    std::optional<std::string> path;
    int status = 0;
};
const WebRootAnswer* webRootAnswer = nullptr;

/// Bytes that a read of a file gives at most; negative: all.
long readableBytes = -1;

}  // namespace

extern "C" {

/// Stands before the control point's own for the whole program.
int UPnP_CD_GetWebRootPath(char** path) {
    static const auto next =
        reinterpret_cast<decltype(&UPnP_CD_GetWebRootPath)>(dlsym(RTLD_NEXT, "UPnP_CD_GetWebRootPath"));
    if (webRootAnswer == nullptr) return next(path);
    *path = webRootAnswer->path ? t_alloc_copy(webRootAnswer->path->c_str()) : nullptr;
    return webRootAnswer->status;
}

std::size_t __real_fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap_fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap_fread(void* buffer, std::size_t size, std::size_t count, std::FILE* file) {
    if (readableBytes < 0) return __real_fread(buffer, size, count, file);
    const std::size_t bytes = std::min(size * count, static_cast<std::size_t>(readableBytes));
    return bytes == 0 ? 0 : __real_fread(buffer, 1, bytes, file) / (size == 1 ? 1 : bytes);
}
}

namespace epgtest {
namespace {

using testing::_;
using testing::Contains;
using testing::ElementsAre;

class DeviceInformation : public AdapterTest {
protected:
    DeviceInformation() {
        answer.path = folder.path().string();
        webRootAnswer = &answer;
    }
    ~DeviceInformation() override {
        webRootAnswer = nullptr;
        readableBytes = -1;
    }

    void describe(const std::string& text) const {
        std::filesystem::create_directories(folder.path() / "rcr");
        folder.write("rcr/RemoteControlReceiver.xml", text);
    }

    static std::ptrdiff_t openFiles() {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    }

    /// Asks, and sees that no file stays open.
    ServiceAnswer ask(const char* method = "GET") {
        log.clear();
        const TestDocument document;
        const auto openBefore = openFiles();
        const int status = t_UPnP_Info(document, method);
        EXPECT_EQ(openFiles(), openBefore);
        return {status, document.json(), std::nullopt};
    }

    /// Asserts that the answer is 404 without members and that this is the last line logged.
    void expectRefused(Logger::Level level, const std::string& message) {
        EXPECT_EQ(ask(), nothing);
        EXPECT_EQ(logged().back(), LogLine(level, message));
    }

    const ServiceAnswer nothing{404, "{}", std::nullopt};
    const epgset::test::TemporaryFolder folder;
    const LogLine rootLine{Logger::Debug, "UPnP Root is " + folder.path().string()};
    const LogLine pathLine{Logger::Debug,
                           "UUID path is " + folder.path().string() + "/rcr/RemoteControlReceiver.xml\n"};
    WebRootAnswer answer;
};

TEST_F(DeviceInformation, IsReadFromTheDescription) {
    describe(wholeDescription);
    EXPECT_EQ(ask(), (ServiceAnswer{200, wholeMembers, std::nullopt}));
    const auto lines = logged();
    ASSERT_EQ(lines.size(), 14U);
    EXPECT_EQ(lines[0], LogLine(Logger::Trace, "t_UPnP_Info"));
    EXPECT_EQ(lines[1], rootLine);
    EXPECT_EQ(lines[2], pathLine);
}

TEST_F(DeviceInformation, IsFineWithoutAnyElement) {
    describe("no XML");
    EXPECT_EQ(ask(), (ServiceAnswer{200, "{}", std::nullopt}));
}

TEST_F(DeviceInformation, EndsAtANulInTheFile) {
    using namespace std::string_literals;
    describe("<friendlyName>a\0b</friendlyName><manufacturer>m</manufacturer>"s);
    EXPECT_EQ(ask(), (ServiceAnswer{200, R"({"friendlyName":"a"})", std::nullopt}));
}

TEST_F(DeviceInformation, IsReadOnly) {
    describe(wholeDescription);
    for (const char* method : {"POST", "DELETE", "get", ""}) {
        EXPECT_EQ(ask(method), nothing);
        EXPECT_THAT(logged(), ElementsAre(LogLine(Logger::Trace, "t_UPnP_Info"),
                                          LogLine(Logger::Warning, "t_UPnP_Info does not support " +
                                                                       std::string(method) + " method")));
    }
    EXPECT_EQ(ask(nullptr), nothing);
    EXPECT_EQ(logged().back(), LogLine(Logger::Warning, "t_UPnP_Info does not support (null) method"));
}

TEST_F(DeviceInformation, NeedsAWebRoot) {
    answer = {std::nullopt, -3};
    expectRefused(Logger::Warning, "UPnP_CD_GetWebRootPath failed! (ret:-3)");
    answer.status = 0;
    expectRefused(Logger::Warning, "UPnP_CD_GetWebRootPath failed! (ret:0)");
}

TEST_F(DeviceInformation, DoesNotMindTheStatusBesideAWebRoot) {
    describe(wholeDescription);
    answer.status = -3;
    EXPECT_EQ(ask().status, 200);
}

TEST_F(DeviceInformation, PutsNothingBetweenTheRootAndTheFile) {
    answer.path = "/no-such-root-";
    EXPECT_EQ(ask(), nothing);
    EXPECT_THAT(logged(), Contains(LogLine(Logger::Debug,
                                           "UUID path is /no-such-root-/rcr/RemoteControlReceiver.xml\n")));
}

TEST_F(DeviceInformation, NeedsTheFile) {
    expectRefused(Logger::Error, "UUID file cannot be opened");
    EXPECT_THAT(logged(), ElementsAre(_, rootLine, pathLine, _));
}

TEST_F(DeviceInformation, NeedsAFileThatIsNotEmpty) {
    describe("");
    expectRefused(Logger::Warning, "UUID file size is 0");
}

TEST_F(DeviceInformation, NeedsAFileThatCanBeRead) {
    describe(wholeDescription);
    readableBytes = 0;
    expectRefused(Logger::Error, "UUID file read failed!");
}

TEST_F(DeviceInformation, UsesWhatCouldBeRead) {
    describe(wholeDescription);
    readableBytes =
        static_cast<long>(std::strlen("<?xml version=\"1.0\"?>\n<root>\n <device>\n  <friendlyName>Liv"));
    EXPECT_EQ(ask(), (ServiceAnswer{200, R"({"friendlyName":"Liv"})", std::nullopt}));
}

TEST_F(DeviceInformation, NeedsMemoryForThePathAndTheFile) {
    describe(wholeDescription);
    int refusals = 0;
    for (const std::size_t bytes :
         {folder.path().string().size() + std::strlen("/rcr/RemoteControlReceiver.xml") + 1,
          std::strlen(wholeDescription) + 1}) {
        const FailingAllocations fault(bytes);
        const TestDocument document;
        log.clear();
        if (t_UPnP_Info(document, "GET") == 404) ++refusals;
        EXPECT_EQ(logged().back(), LogLine(Logger::Error, "t_UPnP_Info malloc failed!"));
        EXPECT_EQ(document.json(), "{}");
    }
    EXPECT_EQ(refusals, 2);
}

}  // namespace
}  // namespace epgtest
