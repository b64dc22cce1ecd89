#include "host/ResponseDocument.h"

#include <cstring>
#include <limits>
#include <new>

#include "set/document/Document.h"
#include "set/document/DocumentFaults.h"
#include "set/document/JsonPrinter.h"
#include "set/document/PrintBuffer.h"
#include "set/document/XmlPrinter.h"
#include "set/memory/MemoryShortage.h"

using epgset::Document;
using epgset::DocumentObject;

namespace {

// Every handle, a document's too, is the address of an object.
DocumentObject* objectOf(void* handle) {
    return static_cast<DocumentObject*>(handle);
}

Document& documentOf(void* handle) {
    return objectOf(handle)->document;
}

/// The printed document; null for an unknown format and for a text longer than an int tells. Throws
/// std::bad_alloc.
epgset::MallocText printed(const Document& document, int format, int& length) {
    epgset::PrintBuffer buffer(document.byteCount() + 256);  // printed, a member is shorter than in memory
    if (format == TARNO_RDOC_XML) {
        epgset::printXml(document, buffer);
    } else if (format == TARNO_RDOC_JSON) {
        epgset::printJson(document, buffer);
    } else {
        return nullptr;
    }
    if (buffer.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) return nullptr;
    length = static_cast<int>(buffer.size());
    return buffer.release();
}

}  // namespace

void* TARNO_rdoc_create_root() {
    if (!epgset::mayMakeDocumentObject()) return nullptr;
    auto* document = new (std::nothrow) Document;
    if (document == nullptr) epgset::noteMemoryShortage();
    return document == nullptr ? nullptr : &document->root();
}

void* TARNO_rdoc_create_object(void* document) {
    if (document == nullptr || !epgset::mayMakeDocumentObject()) return nullptr;
    try {
        return documentOf(document).createObject();
    } catch (const std::bad_alloc&) {
        epgset::noteMemoryShortage();
        return nullptr;
    }
}

void TARNO_rdoc_add_object(void* parent, const char* key, void* child) {
    if (parent == nullptr || child == nullptr) return;
    documentOf(parent).addObject(*objectOf(parent), key, *objectOf(child));
}

void TARNO_rdoc_add_UTF8(void* object, const char* key, const char* text) {
    if (object != nullptr) documentOf(object).addText(*objectOf(object), key, text);
}

void TARNO_rdoc_add_integer(void* object, const char* key, int value) {
    if (object != nullptr) documentOf(object).addInteger(*objectOf(object), key, value);
}

void TARNO_rdoc_add_boolean(void* object, const char* key, const char* value) {
    if (object == nullptr) return;
    documentOf(object).addBoolean(*objectOf(object), key,
                                  value != nullptr && std::strcmp(value, "true") == 0);
}

int TARNO_rdoc_print_opt(void* document, int format, char** text, int* length, int /*option*/) {
    if (text != nullptr) *text = nullptr;
    if (length != nullptr) *length = 0;
    if (document == nullptr || text == nullptr || length == nullptr) return -1;
    if (epgset::isDocumentPrintingFailing() || !documentOf(document).isComplete()) return -1;
    try {
        *text = printed(documentOf(document), format, *length).release();
    } catch (const std::bad_alloc&) {
        epgset::noteMemoryShortage();
        return -1;
    }
    return *text == nullptr ? -1 : 0;
}

void TARNO_rdoc_destroy(void* document) {
    if (document != nullptr) delete &documentOf(document);
}
