// What others make of a printed document: RapidJSON and libxml2.
#pragma once

#include <libxml/tree.h>
#include <rapidjson/document.h>

#include <memory>
#include <optional>
#include <string_view>

namespace epgfuzz {

struct FreeXml {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using XmlDocument = std::unique_ptr<xmlDoc, FreeXml>;

/// The JSON that a text is, its UTF-8 validated; nothing for a text that is none.
std::optional<rapidjson::Document> parsedJson(std::string_view text);

/// The XML that a text is, whatever its depth; null for a text that is none.
XmlDocument parsedXml(std::string_view text);

inline bool isJson(std::string_view text) {
    return parsedJson(text).has_value();
}
inline bool isXml(std::string_view text) {
    return parsedXml(text) != nullptr;
}

}  // namespace epgfuzz
