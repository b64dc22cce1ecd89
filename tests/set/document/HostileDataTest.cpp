#include <libxml/parser.h>
#include <libxml/tree.h>
#include <rapidjson/document.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "set/text/Utf8.h"
#include "tests/set/document/DocumentFixture.h"

namespace epgset {
namespace {

struct FreeXml {
    void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
};
using XmlPtr = std::unique_ptr<xmlDoc, FreeXml>;

XmlPtr parsedXml(const std::string& text) {
    return XmlPtr(xmlReadMemory(text.data(), static_cast<int>(text.size()), "answer.xml", nullptr,
                                XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
}

std::string stringOf(xmlChar* text) {
    const std::string copy = text == nullptr ? "" : reinterpret_cast<const char*>(text);
    xmlFree(text);
    return copy;
}

/// The key that an element stands for.
std::string keyOf(xmlNodePtr element) {
    const std::string name = reinterpret_cast<const char*>(element->name);
    return name == "member" ? stringOf(xmlGetNoNsProp(element, reinterpret_cast<const xmlChar*>("name")))
                            : name;
}

class HostileData : public DocumentFixture {
protected:
    /// Bytes without a NUL: any, or those that markup and escapes are made of, or a name.
    std::string anyText() {
        static const std::string markup =
            "<>&\"'\\/:;!?[]{}#x-. \t\r\n\x01\x1F\x7F\xC3\xA9\xEF\xBF\xBE\xED\xA0\x80";
        std::string text(random_() % 16, 'k');
        const unsigned kind = static_cast<unsigned>(random_() % 3);
        for (char& byte : text) {
            if (kind == 0) byte = static_cast<char>(random_() % 255 + 1);
            if (kind == 1) byte = markup[random_() % markup.size()];
            if (kind == 2) byte = static_cast<char>('a' + random_() % 26);
        }
        return text;
    }

    std::mt19937 random_{2024};
};

TEST_F(HostileData, ComesBackRepairedFromJsonAndXml) {
    std::vector<std::string> keys;
    std::vector<std::string> texts;
    for (int i = 0; i < 5000; ++i) {
        keys.push_back(anyText());
        texts.push_back(anyText());
        TARNO_rdoc_add_UTF8(root(), keys.back().c_str(), texts.back().c_str());
    }
    rapidjson::Document parsed;
    parsed.Parse<rapidjson::kParseValidateEncodingFlag>(json().c_str());
    ASSERT_FALSE(parsed.HasParseError());
    ASSERT_EQ(parsed.MemberCount(), texts.size());
    const XmlPtr document = parsedXml(xml());
    ASSERT_NE(document, nullptr);
    xmlNodePtr element = xmlDocGetRootElement(document.get())->children;
    for (std::size_t i = 0; i < texts.size(); ++i, element = element->next) {
        const std::string key = repairedUtf8(keys[i], Utf8Repertoire::Xml);
        const std::string text = repairedUtf8(texts[i], Utf8Repertoire::Xml);
        const auto& member = parsed.MemberBegin()[static_cast<std::ptrdiff_t>(i)];
        ASSERT_EQ(std::string(member.name.GetString(), member.name.GetStringLength()), key);
        ASSERT_EQ(std::string(member.value.GetString(), member.value.GetStringLength()), text);
        ASSERT_NE(element, nullptr);
        ASSERT_EQ(keyOf(element), key);
        ASSERT_EQ(stringOf(xmlNodeGetContent(element)), text);
    }
    EXPECT_EQ(element, nullptr);
}

TEST_F(HostileData, InATreeOfAnyShapeIsWellFormed) {
    for (int round = 0; round < 300; ++round) {
        void* branch = attached(root(), anyText().c_str());
        std::vector<void*> objects{branch};
        for (std::size_t i = random_() % 40; i > 0; --i) {
            void* object = objects[random_() % objects.size()];
            const std::string text = anyText();
            const char* key = random_() % 2 == 0 ? text.c_str() : nullptr;
            switch (random_() % 5) {
                case 0:
                    TARNO_rdoc_add_UTF8(object, key, anyText().c_str());
                    break;
                case 1:
                    TARNO_rdoc_add_UTF8(object, key, nullptr);
                    break;
                case 2:
                    TARNO_rdoc_add_integer(object, key, static_cast<int>(random_()));
                    break;
                case 3:
                    TARNO_rdoc_add_boolean(object, key, anyText().c_str());
                    break;
                default:
                    objects.push_back(TARNO_rdoc_create_object(root()));
                    TARNO_rdoc_add_object(object, key, objects[random_() % objects.size()]);
            }
        }
    }
    rapidjson::Document parsed;
    parsed.Parse<rapidjson::kParseValidateEncodingFlag>(json().c_str());
    EXPECT_FALSE(parsed.HasParseError());
    EXPECT_EQ(parsed.MemberCount(), 300U);
    const XmlPtr document = parsedXml(xml());
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(xmlChildElementCount(xmlDocGetRootElement(document.get())), 300U);
}

}  // namespace
}  // namespace epgset
