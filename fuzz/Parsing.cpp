#include "fuzz/Parsing.h"

#include <libxml/parser.h>

namespace epgfuzz {

std::optional<rapidjson::Document> parsedJson(std::string_view text) {
    constexpr unsigned flags = rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    rapidjson::Document document;
    document.Parse<flags>(text.data(), text.size());
    if (document.HasParseError()) return std::nullopt;
    return document;
}

XmlDocument parsedXml(std::string_view text) {
    constexpr int flags = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE;
    return XmlDocument(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, flags));
}

}  // namespace epgfuzz
