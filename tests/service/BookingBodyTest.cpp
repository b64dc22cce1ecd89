// Bodies of bookings as no client should send them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

#include "tests/service/BookingFixture.h"
#include "tests/support/RawConnection.h"

namespace epgset::test {
namespace {

using namespace std::string_literals;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class BookingBody : public BookingFixture {
protected:
    /// Without a log: what cannot be parsed is logged, more of it than a pipe holds that nobody reads.
    static void SetUpTestSuite() {
        EpghostProcess::Arguments options = guideOptions();
        options.insert(options.end(), {"--log-level", "off"});
        startSet(options);
    }

    static constexpr const char* view = R"({"status":"VIEW"})";
    static constexpr std::size_t limit = 2097152;

    /// A raw request to add a schedule, with this line in its head.
    static std::string postWith(const std::string& line) {
        return "POST /ws/epg2/schedules HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n" + line + "\r\n";
    }

    static std::string lengthLine(std::size_t length) {
        return "Content-Length: " + std::to_string(length) + "\r\n";
    }

    /// Whether the set still answers and holds no booking.
    void expectNothingHappened() {
        EXPECT_EQ(200, get("channels").status);
        EXPECT_THAT(scheduleIds(), IsEmpty());
    }
};

TEST_F(BookingBody, ThatIsNoJsonBooksNothing) {
    for (const char* body :
         {"no JSON", "[1,2]", "null", "\"", "{", "}", "{{{{", "{}{}", "<status>VIEW</status>",
          "%7B%22status%22%7D", "\xFF\xFE{\xC0\x80}", "{\"\":\"\"}", "{:}", "{,}", "%n%s"}) {
        EXPECT_THAT(statusOf("POST", "schedules", body), AnyOf(204, 400)) << body;
        EXPECT_THAT(statusOf("POST", scheduleOf(coming_), body), AnyOf(400, 404)) << body;
        EXPECT_EQ(404, statusOf("PUT", "schedules/sch_id_1", body)) << body;
    }
    expectNothingHappened();
}

TEST_F(BookingBody, ThatIsCutAnywhereBooksNothing) {
    const std::string whole = manual("18:00", "19:00");
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_THAT(statusOf("POST", "schedules", whole.substr(0, length)), AnyOf(204, 400)) << length;
    expectNothingHappened();
    EXPECT_EQ(201, statusOf("POST", "schedules", whole));
}

TEST_F(BookingBody, ThatIsCutAnywhereBooksNoProgramme) {
    const std::string whole = R"({"repeat":"ONCE","force":"false","name":"x","status":"RECORD"})";
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_THAT(statusOf("PUT", scheduleOf(coming_), whole.substr(0, length)), AnyOf(400, 404)) << length;
    expectNothingHappened();
    EXPECT_EQ(201, statusOf("PUT", scheduleOf(coming_), whole));
}

TEST_F(BookingBody, ThatIsCutAnywhereLeavesAScheduleAsItIs) {
    ASSERT_EQ(201, statusOf("POST", "schedules", manual("18:00", "19:00")));
    const std::string path = "schedules/" + scheduleIds().at(0);
    const std::string before = get(path).body;
    const std::string whole = manual("20:00", "21:00");
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_THAT(statusOf("PUT", path, whole.substr(0, length)), AnyOf(400, 404)) << length;
    EXPECT_EQ(before, get(path).body);
    EXPECT_EQ(200, statusOf("PUT", path, whole));
}

TEST_F(BookingBody, MayEndBehindAComma) {
    EXPECT_EQ(201, statusOf("POST", scheduleOf(coming_), R"({"status":"VIEW",)"));
}

TEST_F(BookingBody, OfTwoMebibytesOfQuotesIsAnswered) {
    const std::string quotes(limit, '"');
    const std::string open = "{" + quotes.substr(1);
    for (const std::string& body : {quotes, open}) {
        EXPECT_EQ(204, statusOf("POST", "schedules", body));
        EXPECT_EQ(404, statusOf("POST", scheduleOf(coming_), body));
    }
    EXPECT_EQ(404, statusOf("POST", "schedules", quotes + '"')) << "a byte more than is read";
    expectNothingHappened();
}

TEST_F(BookingBody, OfTwoMebibytesIsReadToItsEnd) {
    const std::string begin = R"({"synopsis":")";
    const std::string end = R"(","status":"VIEW"})";
    EXPECT_EQ(201, statusOf("POST", scheduleOf(coming_),
                            begin + std::string(limit - begin.size() - end.size(), 'x') + end));
}

TEST_F(BookingBody, EndsAtItsFirstNul) {
    EXPECT_EQ(400, statusOf("POST", scheduleOf(coming_), "{\"status\":\"VI\0EW\"}"s));
    EXPECT_EQ(404, statusOf("POST", scheduleOf(coming_), "\0{\"status\":\"VIEW\"}"s));
    EXPECT_EQ(204, statusOf("POST", "schedules", std::string(1000, '\0')));
    expectNothingHappened();
    EXPECT_EQ(201, statusOf("POST", scheduleOf(coming_), view + "\0 and what no one reads"s));
}

TEST_F(BookingBody, WithoutALengthIsNone) {
    RawConnection connection(set().url());
    connection.send(postWith(""));
    EXPECT_EQ(400, epgset::test::statusOf(connection.receiveAll()));
    expectNothingHappened();
}

TEST_F(BookingBody, LongerThanItsLengthIsCutThere) {
    const std::string whole = manual("18:00", "19:00");
    RawConnection connection(set().url());
    connection.send(postWith(lengthLine(whole.size() - 1)) + whole);
    EXPECT_EQ(204, epgset::test::statusOf(connection.receiveAll()));
    expectNothingHappened();
}

TEST_F(BookingBody, ShorterThanItsLengthIsForgottenWithItsClient) {
    const std::string whole = manual("18:00", "19:00");
    {
        RawConnection connection(set().url());
        connection.send(postWith(lengthLine(whole.size() + 1)) + whole);
    }
    RawConnection half(set().url());
    half.send(postWith(lengthLine(whole.size() + 1)) + whole);
    half.endSending();
    EXPECT_EQ("", half.receiveAll(std::chrono::milliseconds(200)));
    expectNothingHappened();
}

TEST_F(BookingBody, ThatDoesNotComeIsWaitedForWhileOthersAreAnswered) {
    const std::string whole = manual("18:00", "19:00");
    RawConnection silent(set().url());
    silent.send(postWith(lengthLine(whole.size())) + whole.substr(0, whole.size() - 1));
    EXPECT_EQ("", silent.receiveAll(std::chrono::milliseconds(100)));
    expectNothingHappened();
    silent.send(whole.substr(whole.size() - 1));
    EXPECT_EQ(201, epgset::test::statusOf(silent.receiveAll()));
    EXPECT_THAT(scheduleIds(), SizeIs(1));
}

TEST_F(BookingBody, WithALengthThatIsNoneIsRefused) {
    for (const char* line :
         {"Content-Length: -1\r\n", "Content-Length: x\r\n", "Content-Length: 99999999999999999999\r\n"}) {
        RawConnection connection(set().url());
        connection.send(postWith(line) + view);
        EXPECT_THAT(epgset::test::statusOf(connection.receiveAll()), AnyOf(0, 400, 404, 413)) << line;
    }
    expectNothingHappened();
}

}  // namespace
}  // namespace epgset::test
