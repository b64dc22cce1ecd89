// A second account of a response document: what it should say, whichever way it is printed.
#pragma once

#include <libxml/tree.h>
#include <rapidjson/document.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace epgfuzz {

struct ModelMember;

/// An object, by its members in their order.
struct ModelObject {
    std::vector<ModelMember> members;
};

/// One member; without a key it is an unnamed element.
struct ModelMember {
    std::optional<std::string> key;
    /// No value, a text, a number, a truth, an object.
    std::variant<std::monostate, std::string, std::int32_t, bool, std::unique_ptr<ModelObject>> value;
};

/// Asserts that the JSON says what the object says. `isRoot`: it is the document itself.
void requireSameJson(const ModelObject& object, const rapidjson::Value& json, bool isRoot);

/// Asserts that the content of an element says what the object says.
void requireSameXml(const ModelObject& object, const xmlNode& element);

}  // namespace epgfuzz
