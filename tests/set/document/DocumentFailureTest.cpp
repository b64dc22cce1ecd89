#include <string>

#include "tests/set/document/DocumentFixture.h"

namespace epgset {
namespace {

/// A document whose printing is asked for and may fail.
class DocumentFailure : public DocumentFixture {
protected:
    /// Whether the printing failed and handed out nothing.
    bool failsToPrint(int format) const {
        char placeholder = 'x';
        char* text = &placeholder;
        int length = -1;
        const int result = TARNO_rdoc_print_opt(root(), format, &text, &length, 1);
        const bool handedOut = text != nullptr;
        if (handedOut && result == 0) std::free(text);
        return result != 0 && !handedOut && length == 0;
    }
};

TEST_F(DocumentFailure, AnyFormatButXmlAndJsonFails) {
    for (const int format : {-1, 0, 3, 99})
        EXPECT_TRUE(failsToPrint(format)) << format;
    EXPECT_FALSE(failsToPrint(TARNO_RDOC_XML));
    EXPECT_FALSE(failsToPrint(TARNO_RDOC_JSON));
}

TEST_F(DocumentFailure, PrintingWithoutADocumentOrAPlaceForTheResultFails) {
    char* text = nullptr;
    int length = 0;
    EXPECT_NE(TARNO_rdoc_print_opt(nullptr, TARNO_RDOC_JSON, &text, &length, 1), 0);
    EXPECT_NE(TARNO_rdoc_print_opt(root(), TARNO_RDOC_JSON, nullptr, &length, 1), 0);
    EXPECT_NE(TARNO_rdoc_print_opt(root(), TARNO_RDOC_JSON, &text, nullptr, 1), 0);
    EXPECT_EQ(text, nullptr);
}

TEST_F(DocumentFailure, PrintingCanBeMadeToFail) {
    failDocumentPrinting(true);
    EXPECT_TRUE(failsToPrint(TARNO_RDOC_JSON));
    failDocumentPrinting(false);
    EXPECT_EQ(json(), "{}");
}

TEST_F(DocumentFailure, ObjectsCanBeMadeToFailAfterANumberOfSuccesses) {
    failDocumentObjectsAfter(2);
    EXPECT_NE(TARNO_rdoc_create_object(root()), nullptr);
    EXPECT_NE(TARNO_rdoc_create_object(root()), nullptr);
    EXPECT_EQ(TARNO_rdoc_create_object(root()), nullptr);
    EXPECT_EQ(TARNO_rdoc_create_object(root()), nullptr);
    EXPECT_EQ(TARNO_rdoc_create_root(), nullptr);
    failDocumentObjectsAfter(-1);
    EXPECT_NE(TARNO_rdoc_create_object(root()), nullptr);
    EXPECT_EQ(json(), "{}");
}

TEST_F(DocumentFailure, ADocumentBeyondItsBudgetGivesNoFurtherObjects) {
    setDocumentByteBudget(10000);
    void* items = attached(root(), "items");
    int made = 0;
    while (void* row = TARNO_rdoc_create_object(root())) {
        TARNO_rdoc_add_object(items, nullptr, row);
        TARNO_rdoc_add_UTF8(row, "text", std::string(100, 'x').c_str());
        ASSERT_LT(++made, 100);
    }
    EXPECT_GT(made, 20);
    EXPECT_EQ(TARNO_rdoc_create_object(root()), nullptr);
}

TEST_F(DocumentFailure, KeysCountTowardsTheBudgetAsOftenAsTheyArePrinted) {
    setDocumentByteBudget(10000);
    void* items = attached(root(), "items");
    int made = 0;
    while (void* row = TARNO_rdoc_create_object(root())) {
        TARNO_rdoc_add_object(items, nullptr, row);
        TARNO_rdoc_add_integer(row, std::string(1000, 'k').c_str(), 1);
        ASSERT_LT(++made, 12);
    }
    EXPECT_GT(made, 6);
    EXPECT_LT(json().size(), 20000U);
}

TEST_F(DocumentFailure, TheObjectThatPassesTheBudgetIsPrintedWhole) {
    setDocumentByteBudget(10000);
    void* row = attached(root(), "row");
    const std::string text(9000, 'x');
    TARNO_rdoc_add_UTF8(row, "a", text.c_str());
    TARNO_rdoc_add_UTF8(row, "b", text.c_str());
    EXPECT_EQ(TARNO_rdoc_create_object(root()), nullptr);
    EXPECT_EQ(json(), R"({"row":{"a":")" + text + R"(","b":")" + text + R"("}})");
}

TEST_F(DocumentFailure, ADocumentThatLostAMemberDoesNotPrint) {
    setDocumentByteBudget(10000);
    TARNO_rdoc_add_UTF8(root(), "a", std::string(20000, 'x').c_str());
    TARNO_rdoc_add_integer(root(), "b", 1);
    EXPECT_TRUE(failsToPrint(TARNO_RDOC_JSON));
    EXPECT_TRUE(failsToPrint(TARNO_RDOC_XML));
    EXPECT_EQ(TARNO_rdoc_create_object(root()), nullptr);
}

TEST_F(DocumentFailure, TheBudgetIs64MebibytesUnlessToldOtherwise) {
    const std::string text(1024 * 1024, 'x');
    for (int i = 0; i < 63; ++i)
        TARNO_rdoc_add_UTF8(root(), "t", text.c_str());
    EXPECT_NE(TARNO_rdoc_create_object(root()), nullptr);
    TARNO_rdoc_add_UTF8(root(), "t", text.c_str());
    EXPECT_EQ(TARNO_rdoc_create_object(root()), nullptr);
    EXPECT_EQ(json().size(), 64 * (text.size() + 7) + 1);
}

}  // namespace
}  // namespace epgset
