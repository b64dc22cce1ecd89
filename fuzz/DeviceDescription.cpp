// The device description: its text scraped, and read from the folder that the set serves.
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"
#include "fuzz/Input.h"
#include "fuzz/Parsing.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "host/ResponseDocument.h"
#include "set/log/LogControl.h"
#include "set/text/Utf8.h"
#include "set/upnp/WebRoot.h"
#include "tests/support/TemporaryFolder.h"

namespace epgfuzz {
namespace {

struct DestroyDocument {
    void operator()(void* document) const { TARNO_rdoc_destroy(document); }
};
using Document = std::unique_ptr<void, DestroyDocument>;

std::string printed(void* document) {
    char* text = nullptr;
    int length = 0;
    require(TARNO_rdoc_print_opt(document, TARNO_RDOC_JSON, &text, &length, 1) == 0, "it is printed");
    const std::unique_ptr<char, void (*)(void*)> owned(text, &std::free);
    return {text, static_cast<std::size_t>(length)};
}

std::string scraped(std::string_view description) {
    // Exactly as long as the text and its NUL, so that reading and writing on are seen.
    std::vector<char> text(description.begin(), description.end());
    text.push_back('\0');
    const Document document(TARNO_rdoc_create_root());
    require(t_UPnP_Info_parse_and_output(document.get(), text.data()) == 0, "a scrape always answers 0");
    return printed(document.get());
}

/// A folder that the set serves, while the process lives.
const epgset::test::TemporaryFolder& servedFolder() {
    static const epgset::test::TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "rcr");
    epgset::useWebRoot(folder.path());
    return folder;
}

void checkFile(std::string_view description, const std::string& members) {
    servedFolder().write("rcr/RemoteControlReceiver.xml", description);
    const Document document(TARNO_rdoc_create_root());
    const int status = t_UPnP_Info(document.get(), "GET");
    require(status == (description.empty() ? 404 : 200), "a description that is not empty is read");
    require(printed(document.get()) == (description.empty() ? "{}" : members), "the file says the same");
}

/// Where nothing is escaped, a value stands in the text as it is shown, and ends at a "<".
void checkValues(std::string_view description, const std::string& members) {
    const auto json = parsedJson(members);
    require(json && json->IsObject(), "the members are a JSON object", members);
    if (description.find('\\') != std::string_view::npos) return;
    const std::string repaired = epgset::repairedUtf8(description, epgset::Utf8Repertoire::Xml);
    for (const auto& member : json->GetObject()) {
        require(member.value.IsString(), "a value is a text", members);
        const std::string_view value(member.value.GetString(), member.value.GetStringLength());
        require(value.find('<') == std::string_view::npos, "a value ends at its element's end", value);
        require(repaired.find(value) != std::string::npos, "a value stands in the description", value);
    }
}

}  // namespace

void fuzzDeviceDescription(std::string_view input) {
    epgset::LogControl::setLevel(Container::Logger::Trace);
    epgset::LogControl::capture([](const epgset::LogRecord&) {});
    const std::string_view description = upToNul(input);
    const std::string members = scraped(description);
    checkValues(description, members);
    checkFile(description, members);
}

}  // namespace epgfuzz
