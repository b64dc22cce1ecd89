#include "set/guide/XmltvReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "set/guide/GuideError.h"
#include "tests/set/guide/TemporaryFolder.h"

namespace epgset {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

struct Recorded : XmltvSink {
    void channel(const XmltvChannel& channel) override { channels.push_back(channel); }
    void programme(const XmltvProgramme& programme) override { programmes.push_back(programme); }

    std::vector<XmltvChannel> channels;
    std::vector<XmltvProgramme> programmes;
};

/// `content` as gzip data.
std::string compressed(std::string_view content) {
    z_stream stream{};
    if (deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) return {};
    std::string out(deflateBound(&stream, content.size()) + 32, '\0');
    std::string in(content);
    stream.next_in = reinterpret_cast<Bytef*>(in.data());
    stream.avail_in = static_cast<uInt>(in.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

class XmltvReaderTest : public testing::Test {
protected:
    Recorded read(std::string_view content, const std::string& name = "guide.xml") {
        Recorded recorded;
        readXmltv(folder_.write(name, content), recorded);
        return recorded;
    }

    /// The message for content that is refused.
    std::string refusal(std::string_view content, const std::string& name = "guide.xml") {
        try {
            read(content, name);
        } catch (const GuideError& error) {
            return error.what();
        }
        return "accepted";
    }

    std::string pathOf(const std::string& name) const { return (folder_.path() / name).string(); }

    test::TemporaryFolder folder_;
};

constexpr std::string_view kGuide = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE tv SYSTEM "xmltv.dtd">
<tv generator-info-name="test">
  <channel id="one"><display-name lang="en">One</display-name><display-name>1</display-name><lcn>7</lcn></channel>
  <channel id="two"/>
  <programme start="20260822060000 +0000" stop="20260822070000 +0000" channel="one" clumpidx="0/2">
    <title lang="en">News</title><title lang="fr">Infos</title>
    <desc>First</desc><desc>Second</desc>
    <previously-shown/>
  </programme>
  <programme start="20260822070000" channel="two"/>
</tv>
)";

TEST_F(XmltvReaderTest, YieldsChannelsAndProgrammesInFileOrder) {
    const Recorded recorded = read(kGuide);
    ASSERT_EQ(recorded.channels.size(), 2U);
    EXPECT_EQ(recorded.channels[0].id, "one");
    EXPECT_THAT(recorded.channels[0].displayNames, ElementsAre("One", "1"));
    EXPECT_EQ(recorded.channels[0].lcn, "7");
    EXPECT_EQ(recorded.channels[1].id, "two");
    EXPECT_TRUE(recorded.channels[1].displayNames.empty());

    ASSERT_EQ(recorded.programmes.size(), 2U);
    const XmltvProgramme& first = recorded.programmes[0];
    EXPECT_EQ(first.start, "20260822060000 +0000");
    EXPECT_EQ(first.stop, "20260822070000 +0000");
    EXPECT_EQ(first.channel, "one");
    EXPECT_EQ(first.clumpidx, "0/2");
    EXPECT_EQ(first.title, "News");
    EXPECT_EQ(first.synopsis, "First");
    EXPECT_TRUE(first.episode);
    const XmltvProgramme& second = recorded.programmes[1];
    EXPECT_EQ(second.stop, "");
    EXPECT_EQ(second.title, "");
    EXPECT_FALSE(second.episode);
}

TEST_F(XmltvReaderTest, CollapsesWhiteSpaceAndLineBreaks) {
    const auto programme =
        read(
            "<tv><programme><title>\n  A \t title </title><desc>One\n\n\nTwo&#13;&#10;three"
            "</desc></programme></tv>")
            .programmes.at(0);
    EXPECT_EQ(programme.title, "A title");
    EXPECT_EQ(programme.synopsis, "One Two three");
}

TEST_F(XmltvReaderTest, TakesTextOfNestedElementsAndCdata) {
    const auto programme = read(
                               "<tv><programme><title>A <b>bold</b> title</title><desc><![CDATA[x < y & "
                               "z]]></desc></programme></tv>")
                               .programmes.at(0);
    EXPECT_EQ(programme.title, "A bold title");
    EXPECT_EQ(programme.synopsis, "x < y & z");
}

TEST_F(XmltvReaderTest, DoesNotTakeATitleFromADeeperElement) {
    const auto programme =
        read("<tv><programme><credits><title>no</title></credits><title>yes</title></programme></tv>")
            .programmes.at(0);
    EXPECT_EQ(programme.title, "yes");
}

TEST_F(XmltvReaderTest, ReadsOtherEncodings) {
    const auto programme = read(
                               "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
                               "<tv><programme><title>Caf\xe9</title></programme></tv>")
                               .programmes.at(0);
    EXPECT_EQ(programme.title, "Caf\xc3\xa9");
}

TEST_F(XmltvReaderTest, TellsGzipByItsContent) {
    EXPECT_EQ(read(compressed(kGuide), "guide.xml").programmes.size(), 2U);
    EXPECT_EQ(read(kGuide, "guide.xml.gz").programmes.size(), 2U);
}

TEST_F(XmltvReaderTest, TakesAFileNameAsItStands) {
    EXPECT_EQ(read(kGuide, "a%20b:c").programmes.size(), 2U);
}

TEST_F(XmltvReaderTest, AcceptsAGuideWithoutContent) {
    const Recorded recorded = read("<tv/>");
    EXPECT_TRUE(recorded.channels.empty());
    EXPECT_TRUE(recorded.programmes.empty());
}

TEST_F(XmltvReaderTest, NeverLoadsAnExternalEntity) {
    folder_.write("secret", "secret text");
    folder_.write("secret.dtd", "<!ENTITY fromdtd 'secret text'>");
    const Recorded recorded =
        read("<!DOCTYPE tv SYSTEM \"" + pathOf("secret.dtd") + "\" [<!ENTITY x SYSTEM \"" + pathOf("secret") +
             "\">]><tv><programme><title>A &x; &fromdtd;</title></programme></tv>");
    EXPECT_EQ(recorded.programmes.at(0).title, "A &x; &fromdtd;");
}

TEST_F(XmltvReaderTest, DoesNotExpandEntityBombs) {
    std::string document = "<!DOCTYPE tv [<!ENTITY e0 \"0123456789\">";
    for (int level = 1; level < 10; ++level) {
        const std::string inner = "&e" + std::to_string(level - 1) + ";";
        document += "<!ENTITY e" + std::to_string(level) + " \"";
        for (int copy = 0; copy < 10; ++copy)
            document += inner;
        document += "\">";
    }
    const std::string bomb = document + "]><tv><programme start=\"&e9;\"/></tv>";
    EXPECT_THAT(refusal(bomb), StartsWith(pathOf("guide.xml") + ":1: not a well-formed XML document"));
    const std::string text = document + "]><tv><programme><title>&e9;</title></programme></tv>";
    const std::string outcome = refusal(text);
    EXPECT_TRUE(outcome == "accepted" || outcome.find("not a well-formed") != std::string::npos) << outcome;
}

TEST_F(XmltvReaderTest, NamesFileAndLineOfWhatIsNotWellFormed) {
    EXPECT_THAT(refusal("<tv>\n<channel id=\"a\">\n</tv>\n"),
                AllOf(StartsWith(pathOf("guide.xml") + ":3: not a well-formed XML document: "),
                      HasSubstr("channel")));
    EXPECT_EQ(refusal("<tv>\n<programme/>\n"),
              pathOf("guide.xml") +
                  ":2: not a well-formed XML document: it ends too early or goes on behind its root "
                  "element");
    EXPECT_THAT(refusal("hello\n"), StartsWith(pathOf("guide.xml") + ":1: not a well-formed XML document"));
    EXPECT_THAT(refusal(std::string("\0\1\2\3", 4)), StartsWith(pathOf("guide.xml") + ":1: "));
    EXPECT_THAT(refusal("<tv>\n\n<programme><title>\xff</title></programme></tv>"),
                StartsWith(pathOf("guide.xml") + ":3: "));
    EXPECT_THAT(refusal("<tv/>\n<tv/>"), AllOf(StartsWith(pathOf("guide.xml") + ":2: "),
                                               HasSubstr("goes on behind its root element")));
}

TEST_F(XmltvReaderTest, AnErrorIsOneLine) {
    EXPECT_EQ(refusal("<tv>\n<a b='\n</tv>").find('\n'), std::string::npos);
}

TEST_F(XmltvReaderTest, RefusesAnotherRootElement) {
    EXPECT_EQ(refusal("\n<html><body/></html>"),
              pathOf("guide.xml") + ":2: not an XMLTV guide: the root element is <html>, not <tv>");
}

TEST_F(XmltvReaderTest, RefusesATruncatedGzipFileWhereverItEnds) {
    const std::string whole = compressed(kGuide);
    for (std::size_t size = 20; size < whole.size(); size += 7) {
        EXPECT_THAT(refusal(whole.substr(0, size)), HasSubstr("the compressed data end too early")) << size;
    }
    // The whole document, but not the whole checksum.
    EXPECT_THAT(refusal(whole.substr(0, whole.size() - 1)), HasSubstr("the compressed data end too early"));
}

TEST_F(XmltvReaderTest, RefusesDamagedGzipData) {
    std::string damaged = compressed(kGuide);
    damaged[damaged.size() - 5] = static_cast<char>(damaged[damaged.size() - 5] ^ 1);  // the checksum
    EXPECT_THAT(refusal(damaged), HasSubstr("the compressed data are damaged"));
}

TEST_F(XmltvReaderTest, RefusesAnEmptyFileAFolderAndAMissingFile) {
    EXPECT_EQ(refusal(""), pathOf("guide.xml") + ": is empty");
    Recorded recorded;
    EXPECT_THROW(readXmltv(folder_.path(), recorded), GuideError);
    EXPECT_THROW(readXmltv(folder_.path() / "missing", recorded), GuideError);
    EXPECT_THAT(refusal(compressed("")), StartsWith(pathOf("guide.xml")));
}

/// Adds lines to a guide and knows which line comes next.
class NumberedGuide {
public:
    void add(const std::string& text) {
        text_ += text;
        line_ += static_cast<int>(std::ranges::count(text, '\n'));
    }
    /// Adds a programme and notes its line.
    void addProgramme(const std::string& programme) {
        lines.push_back(line_);
        add(programme);
    }
    const std::string& text() const { return text_; }

    std::vector<int> lines;  ///< of the programmes

private:
    std::string text_;
    int line_ = 1;
};

TEST_F(XmltvReaderTest, TellsTheLineOfARecordHoweverFarDownItStands) {
    NumberedGuide guide;
    guide.add("<?xml version=\"1.0\"?>\n<tv>\n<channel id=\"a\"/>\n");
    while (guide.lines.size() < 20000) {
        guide.addProgramme(
            "  <programme channel=\"a\">\n    <title>A &amp; b</title>\n    <desc>One\r\ntwo&#10;</desc>\n"
            "  </programme>\n");
        guide.addProgramme("<programme/>");
        guide.addProgramme("<programme><desc><![CDATA[One\n]]></desc></programme>\n");
        guide.add("<!-- a comment\nof lines -->\n\n");
    }
    guide.add("</tv>\n");
    ASSERT_GT(guide.lines.back(), 65536);
    const Recorded recorded = read(guide.text());
    std::vector<int> lines;
    for (const XmltvProgramme& programme : recorded.programmes)
        lines.push_back(programme.line);
    EXPECT_EQ(lines, guide.lines);
    EXPECT_EQ(recorded.channels.at(0).line, 3);
}

/// Puts another file in the place of the one that is read, at its first programme.
struct ReplacingFile : Recorded {
    ReplacingFile(std::filesystem::path file, std::filesystem::path by)
        : file_(std::move(file)), by_(std::move(by)) {}

    void programme(const XmltvProgramme& programme) override {
        if (programmes.empty()) std::filesystem::rename(by_, file_);
        Recorded::programme(programme);
    }

private:
    const std::filesystem::path file_;
    const std::filesystem::path by_;
};

TEST_F(XmltvReaderTest, ReadsTheWholeOldFileWhenAnotherTakesItsPlaceMeanwhileAndThenTheWholeNewOne) {
    const std::size_t count = 5'000;  // more than is read at once
    const auto guideOf = [&](const std::string& channel) {
        std::string text = "<tv>";
        for (std::size_t i = 0; i < count; ++i)
            text +=
                "<programme channel='" + channel + "' start='20260823120000'><title>T</title></programme>\n";
        return text + "</tv>";
    };
    const auto onlyOf = [&](const std::string& channel) {
        return testing::AllOf(testing::SizeIs(count),
                              testing::Each(testing::Field(&XmltvProgramme::channel, channel)));
    };
    const auto file = folder_.write("guide.xml", guideOf("old"));
    ReplacingFile first(file, folder_.write("new.xml", guideOf("new")));
    readXmltv(file, first);
    EXPECT_THAT(first.programmes, onlyOf("old"));
    Recorded second;
    readXmltv(file, second);
    EXPECT_THAT(second.programmes, onlyOf("new"));
}

}  // namespace
}  // namespace epgset
