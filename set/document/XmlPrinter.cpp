#include "set/document/XmlPrinter.h"

#include <libxml/tree.h>
#include <libxml/xmlIO.h>
#include <libxml/xmlwriter.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "set/document/DocumentWalk.h"

namespace epgset {
namespace {

const xmlChar* xmlText(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

struct FreeWriter {
    void operator()(xmlTextWriterPtr writer) const noexcept { xmlFreeTextWriter(writer); }
};
using WriterPtr = std::unique_ptr<xmlTextWriter, FreeWriter>;

/// libxml2 calls this with finished output; an exception must not pass through it.
int writeToBuffer(void* buffer, const char* text, int length) noexcept {
    try {
        static_cast<PrintBuffer*>(buffer)->append({text, static_cast<std::size_t>(length)});
        return length;
    } catch (const std::bad_alloc&) {
        return -1;
    }
}

WriterPtr makeWriter(PrintBuffer& out) {
    xmlOutputBufferPtr output = xmlOutputBufferCreateIO(writeToBuffer, nullptr, &out, nullptr);
    if (output == nullptr) throw std::bad_alloc();
    WriterPtr writer(xmlNewTextWriter(output));
    if (writer == nullptr) {
        xmlOutputBufferClose(output);
        throw std::bad_alloc();
    }
    return writer;
}

/// What the writer is given is always well formed, so all that can fail is memory.
void check(int written) {
    if (written < 0) throw std::bad_alloc();
}

class XmlPrinter {
public:
    explicit XmlPrinter(PrintBuffer& out) : writer_(makeWriter(out)) {
        // Written raw: the writer's own declaration of an encoding makes it convert every byte to it.
        check(xmlTextWriterWriteRaw(writer_.get(), xmlText("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n")));
    }

    void open(const DocumentObject& object) {
        if (object.parent == nullptr) {
            check(xmlTextWriterStartElement(writer_.get(), xmlText("response")));
        } else {
            startMember(*object.place);
        }
    }

    void close(const DocumentObject&) { endElement(); }

    void value(const DocumentObject&, const DocumentMember& member) {
        startMember(member);
        switch (member.kind) {
            case DocumentMember::Kind::Text:
                if (member.textLength != 0) writeText(member.text().data());
                break;
            case DocumentMember::Kind::Integer:
                writeInteger(member.integer);
                break;
            case DocumentMember::Kind::Boolean:
                writeText(member.boolean ? "true" : "false");
                break;
            case DocumentMember::Kind::Null:
            case DocumentMember::Kind::Object:  // never comes here: the walk opens it
                break;
        }
        endElement();
    }

    void finish() { check(xmlTextWriterFlush(writer_.get())); }

private:
    void startMember(const DocumentMember& member) {
        const xmlChar* key = xmlText(member.keyStart);
        if (!member.named) {
            check(xmlTextWriterStartElement(writer_.get(), xmlText("item")));
        } else if (xmlValidateNCName(key, 0) == 0) {
            check(xmlTextWriterStartElement(writer_.get(), key));
        } else {
            check(xmlTextWriterStartElement(writer_.get(), xmlText("member")));
            check(xmlTextWriterWriteAttribute(writer_.get(), xmlText("name"), key));
        }
    }

    void endElement() { check(xmlTextWriterEndElement(writer_.get())); }

    void writeText(const char* text) { check(xmlTextWriterWriteString(writer_.get(), xmlText(text))); }

    void writeInteger(std::int32_t value) {
        char digits[16] = {};
        std::to_chars(digits, digits + sizeof digits - 1, value);
        writeText(digits);
    }

    WriterPtr writer_;
};

}  // namespace

void printXml(const Document& document, PrintBuffer& out) {
    XmlPrinter printer(out);
    walkDocument(document, printer);
    printer.finish();
}

}  // namespace epgset
