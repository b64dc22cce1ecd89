#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "tests/plugin/AdapterTest.h"
#include "tests/support/FailingAllocations.h"
#include "tests/support/FreedBlock.h"

namespace epgtest {
namespace {

using testing::Each;
using testing::ElementsAre;

using Units = std::vector<unsigned short>;
using Bytes = std::vector<unsigned char>;

constexpr int upToTheEnd = -1;

/// A copy that ends where the original ends, so that reading on is seen.
template <typename T>
std::unique_ptr<T[]> exactCopy(const T* first, std::size_t count) {
    auto copy = std::make_unique<T[]>(count);
    std::copy_n(first, count, copy.get());
    return copy;
}

/// The conversion of `count` units (all by default) into exactly `room` bytes.
std::string utf8Of(const Units& units, int room, int count = INT_MAX) {
    const auto source = exactCopy(units.data(), units.size());
    const auto buffer = std::make_unique<char[]>(static_cast<std::size_t>(room));
    std::fill_n(buffer.get(), room, '#');
    const int given = count == INT_MAX ? static_cast<int>(units.size()) : count;
    const int written = t_conv_UTF16_to_UTF8(source.get(), given, buffer.get(), room);
    if (written < 0 || written >= room) return "(wrote " + std::to_string(written) + ")";
    EXPECT_EQ(buffer[static_cast<std::size_t>(written)], '\0') << "not terminated";
    return std::string(buffer.get(), static_cast<std::size_t>(written));
}

/// The conversion of `count` bytes (all by default) into exactly `room` units.
Units utf16Of(const std::string& text, int room = 64, int count = INT_MAX) {
    const auto source = exactCopy(text.data(), text.size());
    const auto buffer = std::make_unique<unsigned short[]>(static_cast<std::size_t>(room));
    std::fill_n(buffer.get(), room, static_cast<unsigned short>('#'));
    const int given = count == INT_MAX ? static_cast<int>(text.size()) : count;
    const int written = t_conv_UTF8_to_UTF16(source.get(), given, buffer.get(), room);
    EXPECT_GE(written, 0);
    EXPECT_LT(written, room);
    if (written < 0 || written >= room) return {};
    EXPECT_EQ(buffer[static_cast<std::size_t>(written)], 0) << "not terminated";
    return Units(buffer.get(), buffer.get() + written);
}

/// A text with NUL bytes in it.
template <std::size_t size>
std::string bytes(const char (&literal)[size]) {
    return std::string(literal, size - 1);
}

// Copies ----------------------------------------------------------------------------------------------

TEST(TextCopy, IsTheReceivers) {
    char original[] = "text";
    char* const copy = t_alloc_copy(original);
    ASSERT_NE(copy, nullptr);
    original[0] = 'n';
    EXPECT_EQ(taken(copy), "text");
}

TEST(TextCopy, OfAnEmptyTextIsEmpty) {
    EXPECT_EQ(taken(t_alloc_copy("")), "");
}

TEST(TextCopy, OfNoTextIsNone) {
    EXPECT_EQ(taken(t_alloc_copy(nullptr)), std::nullopt);
}

TEST(TextCopy, WithoutMemoryIsNone) {
    expectNoneWithoutMemory([] { return taken(t_alloc_copy("text")); });
}

// UTF-16 to UTF-8 -------------------------------------------------------------------------------------

TEST(Utf16ToUtf8, RefusesMissingBuffersAndNoRoom) {
    const unsigned short units[] = {'a', 0};
    char buffer[4] = "xyz";
    EXPECT_EQ(t_conv_UTF16_to_UTF8(nullptr, 1, buffer, 4), -1);
    EXPECT_EQ(t_conv_UTF16_to_UTF8(units, 1, nullptr, 4), -1);
    EXPECT_EQ(t_conv_UTF16_to_UTF8(units, 1, buffer, 0), -1);
    EXPECT_EQ(t_conv_UTF16_to_UTF8(units, 1, buffer, -1), -1);
    EXPECT_STREQ(buffer, "xyz");
}

TEST(Utf16ToUtf8, WritesEachCharacterInItsOneToFourBytes) {
    const struct {
        Units units;
        std::string text;
    } examples[] = {
        {{0x01}, "\x01"},
        {{0x7F}, "\x7F"},
        {{0x80}, "\xC2\x80"},
        {{0x7FF}, "\xDF\xBF"},
        {{0x800}, "\xE0\xA0\x80"},
        {{0xD7FF}, "\xED\x9F\xBF"},
        {{0xE000}, "\xEE\x80\x80"},
        {{0xFFFF}, "\xEF\xBF\xBF"},
        {{0xD800, 0xDC00}, "\xF0\x90\x80\x80"},
        {{0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"},
        {{0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
        {{'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 'z'}, "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z"},
    };
    for (const auto& [units, text] : examples)
        EXPECT_EQ(utf8Of(units, 32), text);
}

TEST(Utf16ToUtf8, TakesAPairInReverseOrderToo) {
    EXPECT_EQ(utf8Of({0xDE00, 0xD83D}, 8), "\xF0\x9F\x98\x80");
}

TEST(Utf16ToUtf8, DoesNotCheckThePartnerOfASurrogate) {
    EXPECT_EQ(utf8Of({0xD83D, 'A'}, 8), "\xF0\x9F\x91\x81") << "high, then no surrogate";
    EXPECT_EQ(utf8Of({0xDE00, 'A'}, 8), "\xF0\xA0\x98\x80") << "low, then no surrogate";
    EXPECT_EQ(utf8Of({0xD83D, 0xD83D}, 8), "\xF0\x9F\x90\xBD") << "two high ones";
    EXPECT_EQ(utf8Of({0xDE00, 0xDE01}, 8), "\xF2\x90\x98\x80") << "two low ones";
}

TEST(Utf16ToUtf8, StopsAtALoneSurrogateAtTheEnd) {
    EXPECT_EQ(utf8Of({'a', 0xD83D}, 16), "a");
    EXPECT_EQ(utf8Of({'a', 0xDE00}, 16), "a");
    EXPECT_EQ(utf8Of({'a', 0xD83D, 0xDE00}, 16, 2), "a") << "the partner lies beyond the length";
    EXPECT_EQ(utf8Of({'a', 0xD83D, 0, 'b'}, 16), "a") << "a NUL is no partner";
}

TEST(Utf16ToUtf8, EndsAtANulOrAtTheLength) {
    EXPECT_EQ(utf8Of({'a', 'b', 0, 'c'}, 16), "ab");
    EXPECT_EQ(utf8Of({'a', 'b', 'c'}, 16, 2), "ab");
    EXPECT_EQ(utf8Of({'a'}, 16, 0), "");
    EXPECT_EQ(utf8Of({'a', 'b', 0}, 16, upToTheEnd), "ab");
    EXPECT_EQ(utf8Of({'a', 'b', 0}, 16, INT_MIN), "ab");
}

TEST(Utf16ToUtf8, KeepsAByteForTheTerminator) {
    const Units ten(10, 'x');
    EXPECT_EQ(utf8Of(ten, 8), "xxxxxxx");
    EXPECT_EQ(utf8Of(ten, 1), "");
    EXPECT_EQ(utf8Of(ten, 2), "x");
    EXPECT_EQ(utf8Of(ten, 11), "xxxxxxxxxx");
}

TEST(Utf16ToUtf8, NeverCutsACharacter) {
    const struct {
        Units character;
        std::string text;
    } examples[] = {{{0xE9}, "\xC3\xA9"}, {{0x20AC}, "\xE2\x82\xAC"}, {{0xD83D, 0xDE00}, "\xF0\x9F\x98\x80"}};
    for (const auto& [character, text] : examples) {
        const int length = static_cast<int>(text.size());
        for (int room = 1; room <= length; ++room)
            EXPECT_EQ(utf8Of(character, room), "") << room;
        EXPECT_EQ(utf8Of(character, length + 1), text);

        Units many;
        for (int i = 0; i < 10; ++i)
            many.insert(many.end(), character.begin(), character.end());
        std::string whole;
        while (static_cast<int>(whole.size()) + length < 8)
            whole += text;
        EXPECT_EQ(utf8Of(many, 8), whole);
    }
}

TEST(Utf16ToUtf8, StopsAtTheFirstCharacterThatDoesNotFit) {
    EXPECT_EQ(utf8Of({'a', 0x20AC, 'b'}, 4), "a") << "the b would still fit";
}

// UTF-8 to UTF-16 -------------------------------------------------------------------------------------

TEST(Utf8ToUtf16, RefusesMissingBuffersAndNoRoom) {
    unsigned short buffer[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(t_conv_UTF8_to_UTF16(nullptr, 1, buffer, 4), -1);
    EXPECT_EQ(t_conv_UTF8_to_UTF16("a", 1, nullptr, 4), -1);
    EXPECT_EQ(t_conv_UTF8_to_UTF16("a", 1, buffer, 0), -1);
    EXPECT_EQ(t_conv_UTF8_to_UTF16("a", 1, buffer, -1), -1);
    EXPECT_THAT(buffer, Each('#'));
}

TEST(Utf8ToUtf16, ReadsCharactersOfOneToFourBytes) {
    const struct {
        std::string text;
        Units units;
    } examples[] = {
        {"\x7F", {0x7F}},
        {"\xC2\x80", {0x80}},
        {"\xDF\xBF", {0x7FF}},
        {"\xE0\xA0\x80", {0x800}},
        {"\xEF\xBF\xBF", {0xFFFF}},
        {"\xF0\x90\x80\x80", {0xD800, 0xDC00}},
        {"\xF0\x9F\x98\x80", {0xD83D, 0xDE00}},
        {"\xF0\xBF\xBF\xBF", {0xD8BF, 0xDFFF}},
        {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z", {'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 'z'}},
    };
    for (const auto& [text, units] : examples)
        EXPECT_EQ(utf16Of(text), units);
}

TEST(Utf8ToUtf16, LeavesTheLowBitsOfAFourByteLeadUnused) {
    EXPECT_EQ(utf16Of("\xF7\x9F\x98\x80"), utf16Of("\xF0\x9F\x98\x80"));
    EXPECT_THAT(utf16Of("\xF4\x80\x80\x80"), ElementsAre(0xFFC0, 0xDC00)) << "U+100000";
    EXPECT_THAT(utf16Of("\xF4\x8F\xBF\xBF"), ElementsAre(0xFFFF, 0xDFFF)) << "U+10FFFF";
    EXPECT_THAT(utf16Of("\xF1\x80\x80\x80"), ElementsAre(0xFFC0, 0xDC00)) << "U+40000";
}

TEST(Utf8ToUtf16, SkipsBytesThatBeginNoCharacter) {
    EXPECT_THAT(utf16Of("\x80"
                        "a\x80\xBF\xFE\xFF"
                        "b\xFF"),
                ElementsAre('a', 'b'));
}

TEST(Utf8ToUtf16, AcceptsAnyContinuationButNul) {
    EXPECT_THAT(utf16Of("\xC3"
                        "A"),
                ElementsAre(0x00C1));
    EXPECT_THAT(utf16Of("\xE2"
                        "AB"),
                ElementsAre(0x2042));
    EXPECT_THAT(utf16Of("\xF0"
                        "\x1F"
                        "AB"),
                ElementsAre(0xD800 | (0xF << 2), 0xDC00 | (1 << 6) | 2));
}

TEST(Utf8ToUtf16, StopsAtACharacterThatBreaksOff) {
    for (const std::string whole : {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                    "\xF8"
                                    "bcde",
                                    "\xFC"
                                    "bcdef"}) {
        for (std::size_t length = 1; length < whole.size(); ++length) {
            const std::string part = "a" + whole.substr(0, length);
            EXPECT_THAT(utf16Of(part), ElementsAre('a')) << "at the end of the text";
            EXPECT_THAT(utf16Of(part + '\0' + "zzzzz"), ElementsAre('a')) << "at a NUL";
            EXPECT_THAT(utf16Of("a" + whole + "z", 64, static_cast<int>(part.size())), ElementsAre('a'))
                << "at the length";
        }
    }
}

TEST(Utf8ToUtf16, SkipsFiveAndSixByteForms) {
    EXPECT_THAT(utf16Of("a\xF8\x88\x80\x80\x80z"), ElementsAre('a', 'z'));
    EXPECT_THAT(utf16Of("a\xFB"
                        "bcdez"),
                ElementsAre('a', 'z'));
    EXPECT_THAT(utf16Of("a\xFC\x84\x80\x80\x80\x80z"), ElementsAre('a', 'z'));
    EXPECT_THAT(utf16Of("a\xFD"
                        "bcdefz"),
                ElementsAre('a', 'z'));
}

TEST(Utf8ToUtf16, EndsAtANulOrAtTheLength) {
    EXPECT_THAT(utf16Of(bytes("ab\0c")), ElementsAre('a', 'b'));
    EXPECT_THAT(utf16Of("abc", 64, 2), ElementsAre('a', 'b'));
    EXPECT_THAT(utf16Of("abc", 64, 0), ElementsAre());
    EXPECT_THAT(utf16Of(bytes("ab\0"), 64, upToTheEnd), ElementsAre('a', 'b'));
}

TEST(Utf8ToUtf16, KeepsAUnitForTheTerminator) {
    EXPECT_THAT(utf16Of("abc", 1), ElementsAre());
    EXPECT_THAT(utf16Of("abc", 3), ElementsAre('a', 'b'));
    EXPECT_THAT(utf16Of("\xE2\x82\xAC", 2), ElementsAre(0x20AC));
}

TEST(Utf8ToUtf16, NeverWritesHalfAPair) {
    EXPECT_THAT(utf16Of("\xF0\x9F\x98\x80", 2), ElementsAre());
    EXPECT_THAT(utf16Of("\xF0\x9F\x98\x80", 3), ElementsAre(0xD83D, 0xDE00));
    EXPECT_THAT(utf16Of("a\xF0\x9F\x98\x80z", 3), ElementsAre('a')) << "the z would still fit";
}

// Without a length ------------------------------------------------------------------------------------

/// Much memory that shows one small file again and again, so that it costs next to nothing.
class RepeatedMemory {
public:
    enum Sharing { PagesOfTheirOwn = MAP_PRIVATE, OneFile = MAP_SHARED };

    RepeatedMemory(std::size_t size, const std::string& pattern, Sharing sharing)
        : size_((size / chunk + 1) * chunk) {
        const int file = memfd_create("repeated", MFD_CLOEXEC);
        std::string content;
        while (content.size() < chunk)
            content += pattern;
        EXPECT_EQ(write(file, content.data(), chunk), static_cast<ssize_t>(chunk));
        void* const area =
            mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        EXPECT_NE(area, MAP_FAILED);
        data_ = static_cast<char*>(area);
        for (std::size_t at = 0; at < size_; at += chunk) {
            EXPECT_NE(mmap(data_ + at, chunk, PROT_READ | PROT_WRITE, sharing | MAP_FIXED, file, 0),
                      MAP_FAILED);
        }
        close(file);
    }
    ~RepeatedMemory() { munmap(data_, size_); }
    RepeatedMemory(const RepeatedMemory&) = delete;
    RepeatedMemory& operator=(const RepeatedMemory&) = delete;

    char* data() const { return data_; }

private:
    static constexpr std::size_t chunk = 3U << 20;  ///< whole pages, and patterns of up to six bytes
    std::size_t size_;
    char* data_ = nullptr;
};

constexpr int noLimit = 0x7FFFFFF;  // seven digits: what a negative length stands for

TEST(Utf16ToUtf8, TakesANegativeLengthAs134217727Units) {
    constexpr std::size_t more = noLimit + 64UL;
    const RepeatedMemory source(more * 2, "\x3D\xD8\x3D\xDE", RepeatedMemory::PagesOfTheirOwn);  // pairs
    const RepeatedMemory target(more * 2, "#", RepeatedMemory::OneFile);
    const void* const pages = source.data();  // aligned for any type
    const auto* const units = static_cast<const unsigned short*>(pages);
    EXPECT_EQ(t_conv_UTF16_to_UTF8(units, -1, target.data(), static_cast<int>(more * 2)), noLimit / 2 * 4)
        << "the odd unit at the end is a surrogate without its partner";
}

TEST(Utf8ToUtf16, TakesANegativeLengthAs134217727Bytes) {
    const RepeatedMemory source(noLimit + 64UL, "\xFC-----", RepeatedMemory::PagesOfTheirOwn);  // skipped
    source.data()[noLimit - 1] = 'a';
    source.data()[noLimit] = 'b';
    source.data()[noLimit + 1] = '\0';
    unsigned short buffer[4];
    EXPECT_EQ(t_conv_UTF8_to_UTF16(source.data(), -1, buffer, 4), 1) << "the b lies beyond";
}

// Middleware texts ------------------------------------------------------------------------------------

/// A middleware text of exactly these bytes, on the heap.
HeapBlock handleOf(const Bytes& content) {
    HeapBlock block(std::malloc(content.size()));
    std::memcpy(block.get(), content.data(), content.size());
    return block;
}

Bytes contentOf(const HeapBlock& block, std::size_t length) {
    const auto* const first = static_cast<const unsigned char*>(block.get());
    return Bytes(first, first + length);
}

/// The text of a handle of these bytes, which is left to the caller.
std::optional<std::string> changed(const Bytes& content) {
    const auto handle = handleOf(content);
    return taken(t_change_ZorviStr_to_UTF8(handle.get(), static_cast<int>(content.size()), 0));
}

TEST(MiddlewareText, IsReadAsBigEndian) {
    EXPECT_EQ(changed({0x00, 'A', 0x00, 0xE9, 0x20, 0xAC, 0xD8, 0x3D, 0xDE, 0x00}),
              "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(MiddlewareText, HasRoomForTheLongestForm) {
    const Bytes widest(2000, 0xFF);
    std::string expected;
    for (int i = 0; i < 1000; ++i)
        expected += "\xEF\xBF\xBF";
    EXPECT_EQ(changed(widest), expected);
}

TEST(MiddlewareText, NeedsNoTerminatorAndEndsAtOne) {
    EXPECT_EQ(changed({0, 'A', 0, 'B'}), "AB");
    EXPECT_EQ(changed({0, 'A', 0, 0, 0, 'B'}), "A");
}

TEST(MiddlewareText, KeepsItsFirstLineOnly) {
    EXPECT_EQ(changed({0, 'A', 0, '\n', 0, 'B'}), "A");
    EXPECT_EQ(changed({0, 'A', 0, '\r', 0, 'B'}), "A");
    EXPECT_EQ(changed({0, 'A', 0, '\r', 0, '\n', 0, 'B'}), "A");
    EXPECT_EQ(changed({0, 'A', 0, '\n', 0, '\r', 0, 'B'}), "A");
    EXPECT_EQ(changed({0, '\n', 0, 'B'}), "");
    EXPECT_EQ(changed({0x0A, 'A', 0x0D, 'B'}), "\xE0\xA9\x81\xE0\xB5\x82") << "only a unit is a line break";
}

TEST(MiddlewareText, OfAnOddLengthLosesItsLastByte) {
    const auto handle = handleOf({0, 'A', 0, 'B', 0x7E});
    EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(handle.get(), 5, 0)), "AB");
    EXPECT_THAT(contentOf(handle, 5), ElementsAre('A', 0, 'B', 0, 0x7E));
}

TEST(MiddlewareText, IsLeftInHostOrder) {
    ASSERT_EQ(std::endian::native, std::endian::little);
    const auto handle = handleOf({0x00, 'A', 0x20, 0xAC});
    EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(handle.get(), 4, 0)), "A\xE2\x82\xAC");
    EXPECT_THAT(contentOf(handle, 4), ElementsAre('A', 0x00, 0xAC, 0x20));
    EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(handle.get(), 4, 0)), "\xE4\x84\x80\xEA\xB0\xA0")
        << "a second conversion swaps once more";
}

TEST(MiddlewareText, IsSwappedWholeBeyondItsFirstLine) {
    const auto handle = handleOf({0, '\n', 0, 0, 0, 'B'});
    EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(handle.get(), 6, 0)), "");
    EXPECT_THAT(contentOf(handle, 6), ElementsAre('\n', 0, 0, 0, 'B', 0));
}

TEST(MiddlewareText, WithoutAUnitIsNoneAndStaysTheCallers) {
    for (const int length : {1, 0, -1, -2, INT_MIN}) {
        auto handle = handleOf({'x'});
        const FreedBlock freed(handle.get());
        EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(handle.get(), length, 1)), std::nullopt) << length;
        EXPECT_EQ(freed.times(), 0) << length;
    }
    EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(nullptr, 4, 1)), std::nullopt);
}

TEST(MiddlewareText, IsFreedOnRequest) {
    auto handle = handleOf({0, 'A'});
    const FreedBlock freed(handle.get());
    EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(handle.get(), 2, 0)), "A");
    EXPECT_EQ(freed.times(), 0);
    EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(handle.release(), 2, 1)), "\xE4\x84\x80");
    EXPECT_EQ(freed.times(), 1);
}

TEST(MiddlewareText, WithoutMemoryIsNoneAndStillFreedOnRequest) {
    auto handle = handleOf({0, 'A', 0, 'B'});
    const FreedBlock freed(handle.get());
    {
        const FailingAllocation noText(0);
        EXPECT_EQ(t_change_ZorviStr_to_UTF8(handle.get(), 4, 0), nullptr);
    }
    EXPECT_EQ(freed.times(), 0);
    EXPECT_THAT(contentOf(handle, 4), ElementsAre(0, 'A', 0, 'B')) << "not swapped yet";
    const FailingAllocation noText(0);
    EXPECT_EQ(t_change_ZorviStr_to_UTF8(handle.release(), 4, 1), nullptr);
    EXPECT_EQ(freed.times(), 1);
}

/// The block of 1024 bytes that is made of a text.
Bytes blockOf(const std::string& text) {
    const HeapBlock block(t_change_UTF8_to_ZorviStr(text.c_str()));
    EXPECT_NE(block, nullptr);
    return block == nullptr ? Bytes() : contentOf(block, 1024);
}

/// `units` in big-endian order, filled up with zeros to the size of a block.
Bytes bigEndianBlock(const Units& units) {
    Bytes content;
    for (const unsigned short unit : units) {
        content.push_back(static_cast<unsigned char>(unit >> 8));
        content.push_back(static_cast<unsigned char>(unit & 0xFF));
    }
    content.resize(1024);
    return content;
}

TEST(TextForTheMiddleware, IsBigEndianInAZeroedBlock) {
    EXPECT_EQ(blockOf("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"),
              bigEndianBlock({'A', 0xE9, 0x20AC, 0xD83D, 0xDE00}));
    EXPECT_EQ(blockOf(""), bigEndianBlock({}));
}

TEST(TextForTheMiddleware, IsCutAt511Units) {
    EXPECT_EQ(blockOf(std::string(510, 'x')), bigEndianBlock(Units(510, 'x')));
    for (const std::size_t length : {511U, 512U, 600U, 5000U})
        EXPECT_EQ(blockOf(std::string(length, 'x')), bigEndianBlock(Units(511, 'x'))) << length;
}

TEST(TextForTheMiddleware, IsNotCutInsideAPair) {
    EXPECT_EQ(blockOf(std::string(510, 'x') + "\xF0\x9F\x98\x80"), bigEndianBlock(Units(510, 'x')));
}

TEST(TextForTheMiddleware, ComesBackAsItWas) {
    HeapBlock block(t_change_UTF8_to_ZorviStr("\xD0\x9D\xD0\xBE\xD0\xB2\xD0\xBE\xD1\x81\xD1\x82\xD0\xB8"));
    EXPECT_EQ(taken(t_change_ZorviStr_to_UTF8(block.release(), 1024, 1)),
              "\xD0\x9D\xD0\xBE\xD0\xB2\xD0\xBE\xD1\x81\xD1\x82\xD0\xB8");
}

TEST(TextForTheMiddleware, OfNoTextOrWithoutMemoryIsNone) {
    EXPECT_EQ(t_change_UTF8_to_ZorviStr(nullptr), nullptr);
    const FailingAllocation noBlock(0);
    EXPECT_EQ(t_change_UTF8_to_ZorviStr("text"), nullptr);
}

}  // namespace
}  // namespace epgtest
