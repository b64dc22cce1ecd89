#include <limits>
#include <string>
#include <utility>

#include "tests/set/document/DocumentFixture.h"

namespace epgset {
namespace {

using JsonDocument = DocumentFixture;

TEST_F(JsonDocument, OfNoMembersIsAnEmptyObject) {
    EXPECT_EQ(json(), "{}");
}

TEST_F(JsonDocument, KeepsMembersInTheOrderInWhichTheyWereAdded) {
    TARNO_rdoc_add_UTF8(root(), "b", "text");
    TARNO_rdoc_add_integer(root(), "a", -7);
    TARNO_rdoc_add_boolean(root(), "c", "true");
    TARNO_rdoc_add_UTF8(root(), "b", "again");
    EXPECT_EQ(json(), R"({"b":"text","a":-7,"c":true,"b":"again"})");
}

TEST_F(JsonDocument, PrintsANullTextAsNullAndAnEmptyOneAsItIs) {
    TARNO_rdoc_add_UTF8(root(), "none", nullptr);
    TARNO_rdoc_add_UTF8(root(), "empty", "");
    EXPECT_EQ(json(), R"({"none":null,"empty":""})");
}

TEST_F(JsonDocument, EscapesWhatNeedsItAtAnyPlaceOfATextOfAnyLength) {
    std::string expected;
    for (const auto& [character, escape] :
         {std::pair{'"', "\\\""}, std::pair{'\\', "\\\\"}, std::pair{'\n', "\\n"}}) {
        for (std::size_t length = 1; length < 20; ++length) {
            for (std::size_t place = 0; place < length; ++place) {
                std::string text(length, 'x');
                text[place] = character;
                TARNO_rdoc_add_UTF8(root(), text.c_str(), text.c_str());
                const std::string printed = '"' + text.replace(place, 1, escape) + '"';
                expected += (expected.empty() ? "{" : ",") + printed + ":" + printed;
            }
        }
    }
    EXPECT_EQ(json(), expected + "}");
}

TEST_F(JsonDocument, PrintsEveryBooleanTextButTrueAsFalse) {
    TARNO_rdoc_add_boolean(root(), nullptr, "true");
    for (const char* text : {"false", "", "TRUE", "1", "true "})
        TARNO_rdoc_add_boolean(root(), nullptr, text);
    TARNO_rdoc_add_boolean(root(), nullptr, nullptr);
    EXPECT_EQ(json(), "[true,false,false,false,false,false,false]");
}

TEST_F(JsonDocument, PrintsTheWholeRangeOfIntegers) {
    TARNO_rdoc_add_integer(root(), "least", std::numeric_limits<int>::min());
    TARNO_rdoc_add_integer(root(), "most", std::numeric_limits<int>::max());
    EXPECT_EQ(json(), R"({"least":-2147483648,"most":2147483647})");
}

TEST_F(JsonDocument, PrintsAnObjectOfUnnamedElementsAsAList) {
    void* items = attached(root(), "items");
    TARNO_rdoc_add_UTF8(attached(items, nullptr), "id", "1");
    TARNO_rdoc_add_UTF8(attached(items, nullptr), "id", "2");
    TARNO_rdoc_add_integer(root(), "items_total", 2);
    EXPECT_EQ(json(), R"({"items":[{"id":"1"},{"id":"2"}],"items_total":2})");
}

TEST_F(JsonDocument, PrintsAnEmptyObjectBelowTheRootAsAList) {
    attached(root(), "items");
    EXPECT_EQ(json(), R"({"items":[]})");
}

TEST_F(JsonDocument, PutsUnnamedElementsAmongNamedOnesUnderTheKeyItem) {
    TARNO_rdoc_add_UTF8(root(), "id", "1");
    TARNO_rdoc_add_UTF8(root(), nullptr, "x");
    attached(root(), nullptr);
    EXPECT_EQ(json(), R"({"id":"1","item":"x","item":[]})");
}

TEST_F(JsonDocument, TakesAnEmptyKeyForAName) {
    TARNO_rdoc_add_UTF8(root(), "", "x");
    EXPECT_EQ(json(), R"({"":"x"})");
}

TEST_F(JsonDocument, EscapesKeysAndTexts) {
    TARNO_rdoc_add_UTF8(root(), "a\"b", "tab\tquote\" back\\ line\n <&> \xE2\x82\xAC");
    EXPECT_EQ(json(), "{\"a\\\"b\":\"tab\\tquote\\\" back\\\\ line\\n <&> \xE2\x82\xAC\"}");
}

TEST_F(JsonDocument, ReplacesInvalidBytesAndCharactersThatXmlForbids) {
    TARNO_rdoc_add_UTF8(root(), "k\xFF", "a\x80 b\x01 c\xEF\xBF\xBF");
    EXPECT_EQ(json(), "{\"k\xEF\xBF\xBD\":\"a\xEF\xBF\xBD b\xEF\xBF\xBD c\xEF\xBF\xBD\"}");
}

}  // namespace
}  // namespace epgset
