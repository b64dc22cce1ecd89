#include <gmock/gmock.h>

#include <malloc.h>

#include <limits>
#include <memory>
#include <optional>

#include "Vexmoor/HeapText.h"
#include "tests/plugin/FrameTest.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/FreedBlock.h"

namespace epgtest {
namespace {

using testing::Contains;
using testing::ElementsAre;

const LogLine refusal{Container::Logger::Error, "[EPG callback] Request body read error"};

struct ReadBody {
    int result;
    HeapText text;
};

ReadBody read(FakeRequest& request) {
    char* text = nullptr;
    const int result = readRequestBody(request, &text);
    return {result, HeapText(text)};
}

class RequestBody : public FrameTest {
protected:
    /// The body as a REST query is handed it; nothing when no query was made.
    std::optional<std::string> seenByQuery(FakeRequest& request) {
        std::optional<std::string> seen;
        service.query = [&seen](const ServiceQuery& query) {
            EXPECT_EQ(query.body == nullptr, query.bodyLength == 0);
            seen = query.body == nullptr
                       ? "(none)"
                       : std::string(query.body, static_cast<std::size_t>(query.bodyLength));
            return 200;
        };
        bridged = bridge(request);
        return seen;
    }

    int bridged = -1;  ///< what the bridge answered
};

TEST_F(RequestBody, IsReadWithATerminator) {
    FakeRequest request("POST", "epg2/schedules");
    const ReadBody body = read(request.withBody("{\"a\":1}"));
    EXPECT_EQ(body.result, 7);
    ASSERT_TRUE(body.text);
    EXPECT_STREQ(body.text.get(), "{\"a\":1}");
}

TEST_F(RequestBody, OfLengthZeroIsNone) {
    FakeRequest request("POST", "epg2/schedules");
    const ReadBody body = read(request.withBody("unread").withContentLength(0));
    EXPECT_EQ(body.result, 0);
    EXPECT_FALSE(body.text);
    EXPECT_EQ(request.getInputStream().tellg(), 0);
}

TEST_F(RequestBody, IsJudgedByItsStatedLengthAlone) {
    struct {
        int length;
        int result;
    } const cases[] = {{1, 1},
                       {2097151, 2097151},
                       {2097152, 2097152},
                       {2097153, -1},
                       {std::numeric_limits<int>::max(), -1},
                       {-1, -1},
                       {std::numeric_limits<int>::min(), -1}};
    for (const auto& [length, result] : cases) {
        SCOPED_TRACE(length);
        FakeRequest request("POST", "epg2/schedules");
        const ReadBody body = read(request.withBody("ab").withContentLength(length));
        EXPECT_EQ(body.result, result);
        EXPECT_EQ(static_cast<bool>(body.text), result > 0);
    }
}

TEST_F(RequestBody, EndsWhereItsStatedLengthEnds) {
    FakeRequest request("POST", "epg2/schedules");
    EXPECT_STREQ(read(request.withBody("abcdef").withContentLength(3)).text.get(), "abc");
}

TEST_F(RequestBody, KeepsBytesOfAnyKind) {
    const std::string bytes("a\0b\xFF\n%n", 7);
    FakeRequest request("POST", "epg2/schedules");
    EXPECT_EQ(seenByQuery(request.withBody(bytes)), bytes);
}

TEST_F(RequestBody, IsFilledUpWithZerosWhenTheStreamEndsEarly) {
    mallopt(M_PERTURB, 0x5A);  // fresh blocks are full of other bytes
    FakeRequest request("POST", "epg2/schedules");
    const ReadBody body = read(request.withBody("abc").withContentLength(1000));
    mallopt(M_PERTURB, 0);
    ASSERT_EQ(body.result, 1000);
    EXPECT_EQ(std::string(body.text.get(), 1001), "abc" + std::string(998, '\0'));
}

TEST_F(RequestBody, IsRefusedWithoutMemory) {
    FakeRequest request("POST", "epg2/schedules");
    request.withBody(std::string(54320, 'x'));
    const FailingAllocations failing(54321);
    const ReadBody body = read(request);
    EXPECT_EQ(body.result, -1);
    EXPECT_FALSE(body.text);
}

TEST_F(RequestBody, ReachesTheQueryUpToItsLimit) {
    const std::string largest(2097152, 'x');
    FakeRequest request("POST", "epg2/schedules");
    EXPECT_TRUE(seenByQuery(request.withBody(largest)) == largest);
    EXPECT_EQ(bridged, 1);
}

TEST_F(RequestBody, IsNoneForARequestWithoutOne) {
    FakeRequest request("GET", "epg2/channels");
    EXPECT_EQ(seenByQuery(request), "(none)");
}

TEST_F(RequestBody, ThatCannotBeReadLeavesTheRequestOpen) {
    for (const int length : {2097153, -1}) {
        SCOPED_TRACE(length);
        calls.clear();
        log.clear();
        FakeRequest request("POST", "epg2/schedules");
        EXPECT_EQ(seenByQuery(request.withContentLength(length)), std::nullopt);
        EXPECT_EQ(bridged, 0);
        EXPECT_THAT(frameLines(), ElementsAre(LogLine(Container::Logger::Debug, "epg2"), refusal));
        EXPECT_THAT(calls, ElementsAre("parse path \"epg2/schedules\" -1", "parse query \"\" -1",
                                       "delete path", "delete query", "destroy no document"));
    }
}

TEST_F(RequestBody, IsRefusedOnEveryPath) {
    FakeRequest request("GET", "other");
    EXPECT_EQ(bridge(request.withContentLength(-1)), 0);
    EXPECT_THAT(frameLines(), Contains(refusal));
}

TEST_F(RequestBody, IsFreedLast) {
    std::unique_ptr<FreedBlock> block;
    service.query = [&block](const ServiceQuery& query) {
        block = std::make_unique<FreedBlock>(query.body);
        return 200;
    };
    int freedBeforeDocument = -1;
    host.beforeDestroy = [&] { freedBeforeDocument = block->times(); };
    bridge(FakeRequest("POST", "epg2/schedules").withBody("{}"));
    ASSERT_TRUE(block);
    EXPECT_EQ(freedBeforeDocument, 0);
    EXPECT_EQ(block->times(), 1);
}

TEST_F(RequestBody, IsFreedWhenAnExceptionPasses) {
    std::unique_ptr<FreedBlock> block;
    service.query = [&block](const ServiceQuery& query) -> int {
        block = std::make_unique<FreedBlock>(query.body);
        throw 1;
    };
    FakeRequest request("POST", "epg2/schedules");
    EXPECT_THROW(bridge(request.withBody("{}")), int);
    ASSERT_TRUE(block);
    EXPECT_EQ(block->times(), 1);
}

}  // namespace
}  // namespace epgtest
