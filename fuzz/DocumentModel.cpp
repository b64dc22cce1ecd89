#include "fuzz/DocumentModel.h"

#include <libxml/tree.h>

#include <algorithm>
#include <string_view>

#include "fuzz/Require.h"

namespace epgfuzz {
namespace {

struct FreeXmlText {
    void operator()(xmlChar* text) const { xmlFree(text); }
};

/// A list is made of unnamed elements alone; an empty object is one unless it is the document.
bool isList(const ModelObject& object, bool isRoot) {
    if (object.members.empty()) return !isRoot;
    return std::ranges::none_of(object.members,
                                [](const ModelMember& member) { return member.key.has_value(); });
}

void requireSameJsonValue(const ModelMember& member, const rapidjson::Value& json) {
    if (const auto* const object = std::get_if<std::unique_ptr<ModelObject>>(&member.value)) {
        requireSameJson(**object, json, false);
    } else if (const auto* const text = std::get_if<std::string>(&member.value)) {
        require(json.IsString() && std::string_view(json.GetString(), json.GetStringLength()) == *text,
                "JSON has the text", *text);
    } else if (const auto* const integer = std::get_if<std::int32_t>(&member.value)) {
        require(json.IsInt() && json.GetInt() == *integer, "JSON has the number");
    } else if (const auto* const truth = std::get_if<bool>(&member.value)) {
        require(json.IsBool() && json.GetBool() == *truth, "JSON has the truth");
    } else {
        require(json.IsNull(), "JSON has no value");
    }
}

std::string_view view(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

/// The key that an element stands for; nothing for an unnamed one.
std::string keyOf(const xmlNode& element) {
    if (view(element.name) != "member" || element.properties == nullptr)
        return std::string(view(element.name));
    const std::unique_ptr<xmlChar, FreeXmlText> name(
        xmlGetProp(&element, reinterpret_cast<const xmlChar*>("name")));
    return std::string(view(name.get()));
}

void requireSameXmlValue(const ModelMember& member, const xmlNode& element) {
    if (const auto* const object = std::get_if<std::unique_ptr<ModelObject>>(&member.value)) {
        requireSameXml(**object, element);
        return;
    }
    require(xmlChildElementCount(const_cast<xmlNode*>(&element)) == 0, "a value has no elements");
    const std::unique_ptr<xmlChar, FreeXmlText> content(xmlNodeGetContent(&element));
    std::string expected;
    if (const auto* const text = std::get_if<std::string>(&member.value)) expected = *text;
    if (const auto* const integer = std::get_if<std::int32_t>(&member.value))
        expected = std::to_string(*integer);
    if (const auto* const truth = std::get_if<bool>(&member.value)) expected = *truth ? "true" : "false";
    require(view(content.get()) == expected, "XML has the value", expected);
}

}  // namespace

void requireSameJson(const ModelObject& object, const rapidjson::Value& json, bool isRoot) {
    if (isList(object, isRoot)) {
        require(json.IsArray() && json.Size() == object.members.size(), "JSON has the list");
        for (rapidjson::SizeType i = 0; i < json.Size(); ++i)
            requireSameJsonValue(object.members[i], json[i]);
        return;
    }
    require(json.IsObject() && json.MemberCount() == object.members.size(), "JSON has the object");
    auto member = json.MemberBegin();
    for (const ModelMember& expected : object.members) {
        const std::string_view key(member->name.GetString(), member->name.GetStringLength());
        require(key == expected.key.value_or("item"), "JSON has the key", key);
        requireSameJsonValue(expected, member->value);
        ++member;
    }
}

void requireSameXml(const ModelObject& object, const xmlNode& element) {
    const xmlNode* child = xmlFirstElementChild(const_cast<xmlNode*>(&element));
    for (const ModelMember& expected : object.members) {
        require(child != nullptr, "XML has the member", expected.key.value_or("item"));
        require(keyOf(*child) == expected.key.value_or("item"), "XML has the key",
                expected.key.value_or("item"));
        requireSameXmlValue(expected, *child);
        child = xmlNextElementSibling(const_cast<xmlNode*>(child));
    }
    require(child == nullptr, "XML has no other member");
}

}  // namespace epgfuzz
