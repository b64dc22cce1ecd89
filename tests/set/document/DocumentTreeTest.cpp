#include <string>
#include <vector>

#include "tests/set/document/DocumentFixture.h"

namespace epgset {
namespace {

using DocumentTree = DocumentFixture;

TEST_F(DocumentTree, TakesMembersBeforeAndAfterAnObjectIsAttached) {
    void* object = TARNO_rdoc_create_object(root());
    TARNO_rdoc_add_integer(object, "before", 1);
    TARNO_rdoc_add_object(root(), "o", object);
    TARNO_rdoc_add_integer(object, "after", 2);
    EXPECT_EQ(json(), R"({"o":{"before":1,"after":2}})");
}

TEST_F(DocumentTree, KeepsHandlesValidWhileItGrows) {
    void* first = attached(root(), "first");
    void* items = attached(root(), "items");
    for (int i = 0; i < 20000; ++i)
        TARNO_rdoc_add_integer(attached(items, nullptr), "i", i);
    TARNO_rdoc_add_UTF8(first, "late", "x");
    EXPECT_EQ(json().substr(0, 40), R"({"first":{"late":"x"},"items":[{"i":0},{)");
}

TEST_F(DocumentTree, CopiesKeysAndTexts) {
    std::string key = "key";
    std::string text = "text";
    TARNO_rdoc_add_UTF8(root(), key.c_str(), text.c_str());
    key.assign("xxx");
    text.assign("xxxx");
    EXPECT_EQ(json(), R"({"key":"text"})");
}

TEST_F(DocumentTree, HoldsAnyKeysInAnyOrder) {
    void* items = attached(root(), "items");
    std::string expected;
    for (int row = 0; row < 40; ++row) {
        void* object = attached(items, nullptr);
        expected += row == 0 ? "{" : ",{";
        for (int member = 0; member < 30; ++member) {
            const int number = row * member % 37;  // each row has an order of its own
            const std::string text = std::to_string(number);
            const bool clean = number % 5 != 0;
            TARNO_rdoc_add_integer(object, (text + (clean ? "" : "\xFF")).c_str(), number);
            expected += std::string(member == 0 ? "" : ",") + "\"" + text + (clean ? "" : "\xEF\xBF\xBD") +
                        "\":" + text;
        }
        expected += "}";
    }
    EXPECT_EQ(json(), "{\"items\":[" + expected + "]}");
}

TEST_F(DocumentTree, LeavesOutWhatIsNotAttached) {
    TARNO_rdoc_add_UTF8(TARNO_rdoc_create_object(root()), "lost", "x");
    EXPECT_EQ(json(), "{}");
    EXPECT_EQ(xml(), "<response/>");
}

TEST_F(DocumentTree, AttachesAnObjectOnce) {
    void* a = attached(root(), "a");
    void* b = attached(root(), "b");
    TARNO_rdoc_add_object(root(), "again", a);
    TARNO_rdoc_add_object(b, "again", a);
    EXPECT_EQ(json(), R"({"a":[],"b":[]})");
}

TEST_F(DocumentTree, NeverClosesACycle) {
    void* a = TARNO_rdoc_create_object(root());
    void* b = TARNO_rdoc_create_object(root());
    void* c = TARNO_rdoc_create_object(root());
    TARNO_rdoc_add_object(a, "a", a);
    TARNO_rdoc_add_object(a, "b", b);
    TARNO_rdoc_add_object(b, "c", c);
    TARNO_rdoc_add_object(c, "a", a);
    TARNO_rdoc_add_object(c, "root", root());
    TARNO_rdoc_add_object(root(), "root", root());
    TARNO_rdoc_add_object(root(), "a", a);
    EXPECT_EQ(json(), R"({"a":{"b":{"c":[]}}})");
}

TEST_F(DocumentTree, IgnoresAnObjectOfAnotherDocument) {
    void* other = TARNO_rdoc_create_root();
    TARNO_rdoc_add_object(root(), "stranger", TARNO_rdoc_create_object(other));
    TARNO_rdoc_add_object(root(), "stranger", other);
    TARNO_rdoc_destroy(other);
    EXPECT_EQ(json(), "{}");
}

TEST_F(DocumentTree, IgnoresNullHandles) {
    EXPECT_EQ(TARNO_rdoc_create_object(nullptr), nullptr);
    TARNO_rdoc_add_object(nullptr, "k", root());
    TARNO_rdoc_add_object(root(), "k", nullptr);
    TARNO_rdoc_add_UTF8(nullptr, "k", "v");
    TARNO_rdoc_add_integer(nullptr, "k", 1);
    TARNO_rdoc_add_boolean(nullptr, "k", "true");
    TARNO_rdoc_destroy(nullptr);
    EXPECT_EQ(json(), "{}");
}

TEST_F(DocumentTree, PrintsTheSameAsOftenAsItIsAsked) {
    TARNO_rdoc_add_UTF8(attached(root(), "o"), "k", "v");
    const std::string once = json();
    xml();
    EXPECT_EQ(json(), once);
}

TEST_F(DocumentTree, NestedDeeplyFromTheTopPrintsWithoutRecursion) {
    constexpr std::size_t depth = 200000;
    void* object = root();
    for (std::size_t i = 0; i < depth; ++i)
        object = attached(object, "o");
    std::string expected;
    for (std::size_t i = 0; i < depth; ++i)
        expected += R"({"o":)";
    expected += "[]" + std::string(depth, '}');
    EXPECT_TRUE(json() == expected);
    EXPECT_EQ(xml().size(), std::string("<response></response>").size() + (depth - 1) * 7 + 4);
}

TEST_F(DocumentTree, NestedDeeplyFromTheBottomPrintsWithoutRecursion) {
    constexpr std::size_t depth = 200000;
    void* object = TARNO_rdoc_create_object(root());
    for (std::size_t i = 1; i < depth; ++i) {
        void* parent = TARNO_rdoc_create_object(root());
        TARNO_rdoc_add_object(parent, nullptr, object);
        object = parent;
    }
    TARNO_rdoc_add_object(root(), nullptr, object);
    EXPECT_TRUE(json() == std::string(depth + 1, '[') + std::string(depth + 1, ']'));
}

}  // namespace
}  // namespace epgset
