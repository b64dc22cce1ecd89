// Identifiers, numbers and paths of channels and programmes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "tests/plugin/AdapterTest.h"

namespace epgtest {
namespace {

class ChannelText : public AdapterTest {
protected:
    static std::optional<std::string> number(int major, int minor) {
        TCChannel channel = numbered(Air, major, minor);
        return taken(t_get_channel_num(&channel));
    }
    static std::optional<std::string> path(int tvMode, int major, int minor) {
        TCChannel channel = numbered(tvMode, major, minor);
        return taken(t_get_channel_path(&channel));
    }
    static std::optional<std::string> nameOf(const std::string& name) {
        auto channel = plainChannel();
        channel.name = name;
        TCChannel middlewareChannel = middleware(channel);
        return taken(t_get_channel_name(&middlewareChannel));
    }
};

TEST_F(ChannelText, IdentifierHasTheMinorOnlyAboveZero) {
    EXPECT_EQ(taken(t_get_channel_id(3, 7, 0)), "cid-003-7");
    EXPECT_EQ(taken(t_get_channel_id(3, 7, 2)), "cid-003-7-2");
    EXPECT_EQ(taken(t_get_channel_id(3, 7, -1)), "cid-003-7");
    EXPECT_EQ(taken(t_get_channel_id(23, 1000, 32767)), "cid-023-1000-32767");
    EXPECT_EQ(taken(t_get_channel_id(0, -5, 1)), "cid-000--5-1");
    EXPECT_EQ(taken(t_get_channel_id(-1, 0, 0)), "cid--01-0");
}

TEST_F(ChannelText, IdentifierIsCutToNineteenCharacters) {
    EXPECT_EQ(taken(t_get_channel_id(100, -32768, 32767)), "cid-100--32768-3276");
    EXPECT_EQ(taken(t_get_channel_id(INT_MIN, -32768, 32767)), "cid--2147483648--32");
}

TEST_F(ChannelText, NumberHasTheMinorOnlyFromOneOn) {
    EXPECT_EQ(number(11, 1), "11-1");
    EXPECT_EQ(number(11, 0), "11");
    EXPECT_EQ(number(11, -1), "11");
    EXPECT_EQ(number(11, -32768), "11");
    EXPECT_EQ(number(32767, 32767), "32767-32767");
    EXPECT_EQ(number(0, 0), "0");
}

TEST_F(ChannelText, NumberIsCutToElevenCharacters) {
    EXPECT_EQ(number(-32768, 32767), "-32768-3276");
}

TEST_F(ChannelText, PathEndsInTheIdentifier) {
    EXPECT_EQ(path(3, 7, 0), "/ws/epg2/channels/cid-003-7");
    EXPECT_EQ(path(3, 7, 2), "/ws/epg2/channels/cid-003-7-2");
    EXPECT_EQ(path(3, 7, -1), "/ws/epg2/channels/cid-003-7");
    EXPECT_EQ(path(23, -32768, 32767), "/ws/epg2/channels/cid-023--32768-3276") << "as long as can be";
}

TEST_F(ChannelText, WithoutMemoryIsNone) {
    expectNoneWithoutMemory([] { return taken(t_get_channel_id(3, 7, 2)); });
    expectNoneWithoutMemory([] { return number(11, 1); });
    expectNoneWithoutMemory([] { return path(3, 7, 0); });
    expectNoneWithoutMemory([] { return nameOf("News"); });
}

TEST_F(ChannelText, NameIsUtf8) {
    EXPECT_EQ(nameOf("News 24"), "News 24");
    EXPECT_EQ(nameOf("\xD0\x9A\xD1\x83\xD0\xBB\xD1\x8C\xD1\x82\xD1\x83\xD1\x80\xD0\xB0 \xF0\x9F\x98\x80"),
              "\xD0\x9A\xD1\x83\xD0\xBB\xD1\x8C\xD1\x82\xD1\x83\xD1\x80\xD0\xB0 \xF0\x9F\x98\x80");
}

TEST_F(ChannelText, NameIsItsFirstLine) {
    EXPECT_EQ(nameOf("News\n24"), "News");
    EXPECT_EQ(nameOf("News\r\n24"), "News");
    EXPECT_EQ(nameOf("\nNews"), "");
}

TEST_F(ChannelText, NameThatIsEmptyIsNone) {
    EXPECT_EQ(nameOf(""), std::nullopt);
}

/// A channel whose name has the length that a test says.
class OddlyNamed : public TCChannel {
public:
    explicit OddlyNamed(int length) : length_(length) {}

    int GetChannelNameLength() const override { return length_; }
    int GetChannelName(void* buffer, int bytes) const override {
        const int count = bytes < length_ ? bytes : length_;
        for (int i = 0; i < count; ++i)
            static_cast<char*>(buffer)[i] = i % 2 == 0 ? '\0' : 'x';
        return count;
    }

private:
    int length_;
};

TEST_F(ChannelText, NameOfOneByteOrLessIsNone) {
    for (const int length : {1, 0, -1, INT_MIN}) {
        OddlyNamed channel(length);
        EXPECT_EQ(taken(t_get_channel_name(&channel)), std::nullopt) << length;
    }
}

TEST_F(ChannelText, NameOfAnOddLengthLosesItsLastByte) {
    OddlyNamed channel(7);
    EXPECT_EQ(taken(t_get_channel_name(&channel)), "xxx");
}

class ProgrammeIdentifier : public AdapterTest {};

TEST_F(ProgrammeIdentifier, AlwaysHasTheMinorWithoutItsSign) {
    EXPECT_EQ(taken(t_get_program_id2(0, 5, -3, 1234)), "pid-000-5-3-1234");
    EXPECT_EQ(taken(t_get_program_id2(1, 7, 0, 1234)), "pid-001-7-0-1234");
    EXPECT_EQ(taken(t_get_program_id2(23, 7, 2, 0)), "pid-023-7-2-0");
    EXPECT_EQ(taken(t_get_program_id2(0, 1, -32768, 1)), "pid-000-1-32768-1");
}

TEST_F(ProgrammeIdentifier, IsCutToTwentyFiveCharacters) {
    EXPECT_EQ(taken(t_get_program_id2(23, -32768, -32768, 1234567)), "pid-023--32768-32768-1234");
    EXPECT_EQ(taken(t_get_program_id2(INT_MAX, INT_MIN, INT_MAX, INT_MAX)), "pid-2147483647--214748364");
}

TEST_F(ProgrammeIdentifier, TakesAnyMinor) {
    EXPECT_EQ(taken(t_get_program_id2(0, 1, INT_MIN + 1, 1)), "pid-000-1-2147483647-1");
    EXPECT_EQ(taken(t_get_program_id2(0, 1, INT_MIN, 1)).value_or("").substr(0, 10), "pid-000-1-");
}

TEST_F(ProgrammeIdentifier, IsMadeOfTheChannelAndTheEvent) {
    TCProgram programme = middleware(plainProgramme());
    TCChannel channel = numbered(Satellite, 7, -3);
    EXPECT_EQ(taken(t_get_program_id(&channel, &programme)), "pid-003-7-3-1234");
    channel = numbered(Air, 7, 0);
    EXPECT_EQ(taken(t_get_program_id(&channel, &programme)), "pid-000-7-0-1234");
    EXPECT_EQ(taken(t_get_program_id(nullptr, &programme)), std::nullopt);
    EXPECT_EQ(taken(t_get_program_id(&channel, nullptr)), std::nullopt);
}

TEST_F(ProgrammeIdentifier, WithoutMemoryIsNone) {
    expectNoneWithoutMemory([] { return taken(t_get_program_id2(0, 5, 3, 1234)); });
}

}  // namespace
}  // namespace epgtest
