// The set's device identity, scraped out of the description that it serves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "host/UPnP.h"
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
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Not;
using testing::Pair;
using testing::StartsWith;

constexpr const char* whole = R"(<?xml version="1.0"?>
<root>
 <device>
  <friendlyName>Living room</friendlyName>
  <manufacturer>Maker</manufacturer>
  <manufacturerURL>http://maker.example/</manufacturerURL>
  <modelDescription>A set</modelDescription>
  <modelName>Model</modelName>
  <modelNumber>1.0</modelNumber>
  <modelURL>http://maker.example/model</modelURL>
  <serialNumber>0001</serialNumber>
  <UDN>uuid:1234</UDN>
  <qel:deviceID>D1</qel:deviceID>
  <qel:ProductCap>P1</qel:ProductCap>
 </device>
</root>
)";

constexpr const char* wholeMembers =
    R"({"friendlyName":"Living room","manufacturer":"Maker","manufacturerURL":"http://maker.example/",)"
    R"("modelDescription":"A set","modelName":"Model","modelNumber":"1.0",)"
    R"("modelURL":"http://maker.example/model","serialNumber":"0001","uuid":"1234","qel_deviceID":"D1",)"
    R"("qel_ProductCap":"P1"})";

const std::vector<std::string> searchTexts = {
    "<friendlyName>", "<manufacturer>", "<manufacturerURL>", "<modelDescription>",
    "<modelName>",    "<modelNumber>",  "<modelURL>",        "<serialNumber>",
    "<UDN>uuid:",     "<qel:deviceID>", "<qel:ProductCap>"};

std::string notFound(const std::string& searchText) {
    return "Cannot find entry " + searchText + " in the UUID xml file";
}

// Scraping ----------------------------------------------------------------------------------------------

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
    EXPECT_EQ(scraped(whole), wholeMembers);
    EXPECT_THAT(at(Logger::Warning), IsEmpty());
    EXPECT_THAT(at(Logger::Debug), testing::SizeIs(11));
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
    std::string moved = whole;
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

// The file ----------------------------------------------------------------------------------------------

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
    describe(whole);
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
    describe(whole);
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
    describe(whole);
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
    describe(whole);
    readableBytes = 0;
    expectRefused(Logger::Error, "UUID file read failed!");
}

TEST_F(DeviceInformation, UsesWhatCouldBeRead) {
    describe(whole);
    readableBytes =
        static_cast<long>(std::strlen("<?xml version=\"1.0\"?>\n<root>\n <device>\n  <friendlyName>Liv"));
    EXPECT_EQ(ask(), (ServiceAnswer{200, R"({"friendlyName":"Liv"})", std::nullopt}));
}

TEST_F(DeviceInformation, NeedsMemoryForThePathAndTheFile) {
    describe(whole);
    int refusals = 0;
    for (const std::size_t bytes :
         {folder.path().string().size() + std::strlen("/rcr/RemoteControlReceiver.xml") + 1,
          std::strlen(whole) + 1}) {
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
