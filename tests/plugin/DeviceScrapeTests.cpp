// Scraping the set's device identity out of the text of its description.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/plugin/DeviceDescription.h"
#include "tests/plugin/ServiceTest.h"

namespace epgtest {
namespace {

using testing::_;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

const std::vector<std::string> searchTexts = {
    "<friendlyName>", "<manufacturer>", "<manufacturerURL>", "<modelDescription>",
    "<modelName>",    "<modelNumber>",  "<modelURL>",        "<serialNumber>",
    "<UDN>uuid:",     "<qel:deviceID>", "<qel:ProductCap>"};

std::string notFound(const std::string& searchText) {
    return "Cannot find entry " + searchText + " in the UUID xml file";
}

class DeviceScrape : public AdapterTest {
protected:
    /// The members that come out of a file's text.
    std::string scraped(const std::string& text) {
        log.clear();
        Body buffer(text);
        const TestDocument document;
        EXPECT_EQ(t_UPnP_Info_parse_and_output(document, buffer.data()), 0);
        return document.json();
    }

    /// The bytes that a value of the description becomes, handed over as the log shows them.
    std::string valueOf(const std::string& written) {
        scraped("<friendlyName>" + written + "</friendlyName>");
        const std::string begin = R"(UPnP Info "friendlyName":")";
        const std::string last = logged().back().second;
        if (!last.starts_with(begin)) return "(no value)";
        return last.substr(begin.size(), last.size() - begin.size() - 1);
    }

    std::vector<std::string> at(Logger::Level level) const {
        return log.messagesOf("Vexmoor/EpgSQLPluginVexmoorUtil", level);
    }
};

TEST_F(DeviceScrape, FindsElevenElements) {
    EXPECT_EQ(scraped(wholeDescription), wholeMembers);
    EXPECT_THAT(at(Logger::Warning), IsEmpty());
    ASSERT_THAT(at(Logger::Debug), testing::SizeIs(11));
    EXPECT_EQ(at(Logger::Debug).front(), R"(UPnP Info "friendlyName":"Living room")");
    EXPECT_EQ(at(Logger::Debug)[8], R"(UPnP Info "uuid":"1234")");
}

TEST_F(DeviceScrape, WarnsOfEachMissingElementAndGivesNoMember) {
    EXPECT_EQ(scraped("<root></root>"), "{}");
    std::vector<LogLine> warnings;
    for (const std::string& searchText : searchTexts)
        warnings.emplace_back(Logger::Warning, notFound(searchText));
    EXPECT_EQ(logged(), warnings);
    EXPECT_EQ(scraped(""), "{}");
    EXPECT_EQ(logged(), warnings);
}

TEST_F(DeviceScrape, GoesOnFromTheLastElementFound) {
    EXPECT_EQ(scraped("<friendlyName>a</friendlyName><UDN>uuid:1234</UDN>"),
              R"({"friendlyName":"a","uuid":"1234"})");
    EXPECT_THAT(at(Logger::Warning), testing::SizeIs(9));
}

TEST_F(DeviceScrape, MissesAnElementThatStandsBeforeAnEarlierOne) {
    EXPECT_EQ(scraped("<friendlyName>f</friendlyName><manufacturer>m</manufacturer>"
                      "<manufacturerURL>u</manufacturerURL><modelDescription>d</modelDescription>"
                      "<serialNumber>1</serialNumber>"
                      "<modelName>n</modelName><modelNumber>2</modelNumber><modelURL>w</modelURL>"
                      "<UDN>uuid:3</UDN><qel:deviceID>i</qel:deviceID><qel:ProductCap>c</qel:ProductCap>"),
              R"({"friendlyName":"f","manufacturer":"m","manufacturerURL":"u","modelDescription":"d",)"
              R"("modelName":"n","modelNumber":"2","modelURL":"w","uuid":"3","qel_deviceID":"i",)"
              R"("qel_ProductCap":"c"})");
    EXPECT_THAT(at(Logger::Warning), ElementsAre(notFound("<serialNumber>")));
}

TEST_F(DeviceScrape, FindsTheUuidBehindTheTenOthers) {
    std::string moved = wholeDescription;
    const std::string udn = "  <UDN>uuid:1234</UDN>\n";
    moved.erase(moved.find(udn), udn.size());
    moved.insert(moved.find(" </device>"), udn);
    EXPECT_THAT(scraped(moved), testing::HasSubstr(R"("uuid":"1234")"));
}

TEST_F(DeviceScrape, NeedsTheExactNames) {
    EXPECT_EQ(scraped("<FriendlyName>a</FriendlyName><friendlyName >b</friendlyName >"
                      "<friendlyName lang=\"en\">c</friendlyName><UDN>1234</UDN>"),
              "{}");
}

TEST_F(DeviceScrape, EndsAValueAtTheEndOfTheText) {
    EXPECT_EQ(scraped("<friendlyName>Living"), R"({"friendlyName":"Living"})");
    EXPECT_EQ(scraped("<friendlyName>"), R"({"friendlyName":""})");
    EXPECT_THAT(at(Logger::Warning), testing::SizeIs(10));
}

TEST_F(DeviceScrape, KeepsEmptyValuesAndGoesOnBehindThem) {
    EXPECT_EQ(scraped("<friendlyName></friendlyName><manufacturer></manufacturer><UDN>uuid:</UDN>"),
              R"({"friendlyName":"","manufacturer":"","uuid":""})");
}

TEST_F(DeviceScrape, PassesOverTheBracketThatEndsAValue) {
    EXPECT_EQ(scraped("<friendlyName>a<manufacturer>b</manufacturer><UDN>uuid:3</UDN>"),
              R"({"friendlyName":"a","uuid":"3"})");
}

TEST_F(DeviceScrape, TakesAValueAsItIs) {
    EXPECT_EQ(valueOf(" two\n lines\t&amp;&#65; 'q' \"q\" > {1, 2} "),
              " two\n lines\t&amp;&#65; 'q' \"q\" > {1, 2} ");
    EXPECT_EQ(valueOf("\xC3\xA9\xFF"), "\xC3\xA9\xFF");
}

// Escapes -----------------------------------------------------------------------------------------------

TEST_F(DeviceScrape, WritesAFourDigitEscapeAsUtf8) {
    const std::pair<const char*, const char*> examples[] = {
        {R"(\0041)", "A"},
        {R"(\007F)", "\x7F"},
        {R"(\0080)", "\xC2\x80"},
        {R"(\00E9)", "\xC3\xA9"},
        {R"(\00e9)", "\xC3\xA9"},
        {R"(\07FF)", "\xDF\xBF"},
        {R"(\0800)", "\xE0\xA0\x80"},
        {R"(\20AC)", "\xE2\x82\xAC"},
        {R"(\d7fF)", "\xED\x9F\xBF"},
        {R"(\E000)", "\xEE\x80\x80"},
        {R"(\FFFF)", "\xEF\xBF\xBF"},
        {R"(a\00E9b)",
         "a\xC3\xA9"
         "b"},
        {R"(\00411)", "A1"},
        {R"(\003C)", "<"},
        {R"(\005C0041)", "\\0041"},
    };
    for (const auto& [written, value] : examples) {
        EXPECT_EQ(valueOf(written), value) << written;
        EXPECT_THAT(at(Logger::Warning), testing::SizeIs(10)) << written;
    }
}

TEST_F(DeviceScrape, LogsTheCodeOfAnEscape) {
    valueOf(R"(\00e9\20AC)");
    EXPECT_THAT(at(Logger::Debug), ElementsAre("HEX 00E9\n", "HEX 20AC\n", _));
}

TEST_F(DeviceScrape, DropsSurrogates) {
    EXPECT_EQ(valueOf(R"(a\D83D\DE00b\D800\DFFF)"), "ab");
}

TEST_F(DeviceScrape, EndsAValueAtAnEscapedNul) {
    EXPECT_EQ(scraped(R"(<friendlyName>a\0000b</friendlyName><manufacturer>m</manufacturer>)"),
              R"({"friendlyName":"a","manufacturer":"m"})");
}

TEST_F(DeviceScrape, DropsTheBackslashBeforeAnythingElse) {
    const std::pair<const char*, const char*> examples[] = {
        {R"(\")", "\""},        {R"(\\)", "\\"},         {R"(\/)", "/"},      {R"(\n)", "n"},
        {R"(\u00E9)", "u00E9"}, {R"(\\0041)", "\\0041"}, {R"(\ x)", " x"},    {R"(a\<b)", "a<b"},
        {R"(\G)", "G"},         {R"(\g000)", "g000"},    {R"(\\\\)", "\\\\"},
    };
    for (const auto& [written, value] : examples) {
        EXPECT_EQ(valueOf(written), value) << written;
        EXPECT_THAT(at(Logger::Warning), testing::SizeIs(10)) << written;
    }
}

TEST_F(DeviceScrape, WarnsOfAnEscapeThatIsCutShortAndDropsItsFirstDigit) {
    const struct {
        const char* written;
        const char* value;
        const char* shown;
    } examples[] = {
        {R"(\0G12)", "G12", "(0G12)"}, {R"(\00E)", "0E", "(00E<)"},
        {R"(\bxyz)", "xyz", "(bxyz)"}, {R"(\form)", "orm", "(form)"},
        {R"(\A1)", "1", "(A1</)"},     {R"(\12 4)", "2 4", "(12 4)"},
        {R"(\1)", "", "(1</f)"},       {R"(\1\00E9)", "\xC3\xA9", R"((1\00))"},
    };
    for (const auto& [written, value, shown] : examples) {
        EXPECT_EQ(valueOf(written), value) << written;
        EXPECT_THAT(at(Logger::Warning).front(), AllOf(StartsWith("Warning. Invalid JSON string '"),
                                                       EndsWith("' mark " + std::string(shown))));
        EXPECT_THAT(at(Logger::Warning), testing::SizeIs(11)) << "one warning and ten elements missing";
    }
}

TEST_F(DeviceScrape, GoesOnBehindAValueThatBecameShorter) {
    EXPECT_EQ(scraped(R"(<friendlyName>\00E9\00E9</friendlyName><manufacturer>\"m\"</manufacturer>)"
                      R"(<UDN>uuid:12\0033\0034</UDN>)"),
              R"({"friendlyName":"éé","manufacturer":"\"m\"","uuid":"1234"})");
}

TEST_F(DeviceScrape, StaysInsideATextThatEndsInAnEscape) {
    EXPECT_EQ(scraped("<friendlyName>a\\"), R"({"friendlyName":"a"})");
    EXPECT_EQ(scraped("<friendlyName>a\\1"), R"({"friendlyName":"a"})");
    EXPECT_EQ(scraped("<friendlyName>a\\12"), R"({"friendlyName":"a2"})");
    EXPECT_EQ(scraped("<friendlyName>a\\00E"), R"({"friendlyName":"a0E"})");
    EXPECT_EQ(scraped("<friendlyName>a\\00E9"), R"({"friendlyName":"aé"})");
    EXPECT_EQ(scraped("<friendlyName>\\"), R"({"friendlyName":""})");
}

}  // namespace
}  // namespace epgtest
