// What the tests of the response document share: a document that is destroyed, and its printed text.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "host/ResponseDocument.h"
#include "set/document/DocumentFaults.h"

namespace epgset {

/// A fresh document for each test; faults end with it.
class DocumentFixture : public testing::Test {
protected:
    void TearDown() override {
        failDocumentObjectsAfter(-1);
        failDocumentPrinting(false);
        setDocumentByteBudget(defaultDocumentByteBudget);
    }

    void* root() const { return document_.get(); }

    /// A new object attached to `parent`.
    void* attached(void* parent, const char* key) const {
        void* object = TARNO_rdoc_create_object(root());
        TARNO_rdoc_add_object(parent, key, object);
        return object;
    }

    std::string json() const { return printed(TARNO_RDOC_JSON); }

    /// Without the declaration, which is checked here.
    std::string xml() const {
        const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        const std::string text = printed(TARNO_RDOC_XML);
        EXPECT_EQ(text.substr(0, declaration.size()), declaration);
        return text.size() < declaration.size() ? text : text.substr(declaration.size());
    }

private:
    std::string printed(int format) const {
        char* text = nullptr;
        int length = -1;
        EXPECT_EQ(TARNO_rdoc_print_opt(root(), format, &text, &length, 1), 0);
        if (text == nullptr) return "(nothing)";
        EXPECT_EQ(text[length], '\0');
        std::string copy(text, static_cast<std::size_t>(length));
        std::free(text);
        return copy;
    }

    std::unique_ptr<void, decltype(&TARNO_rdoc_destroy)> document_{TARNO_rdoc_create_root(),
                                                                   &TARNO_rdoc_destroy};
};

}  // namespace epgset
