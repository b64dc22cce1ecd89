#include "set/document/XmlPrinter.h"

#include <libxml/entities.h>
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

struct FreeText {
    void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};
using EscapedText = std::unique_ptr<xmlChar, FreeText>;

/// Where libxml2 writes to. No exception may pass through libxml2, and it reports a failed write on
/// standard error: so a buffer that cannot grow is noted here.
struct Sink {
    PrintBuffer& out;
    bool failed = false;
};

int writeToSink(void* context, const char* text, int length) noexcept {
    auto& sink = *static_cast<Sink*>(context);
    try {
        if (!sink.failed) sink.out.append({text, static_cast<std::size_t>(length)});
    } catch (const std::bad_alloc&) {
        sink.failed = true;
    }
    return length;
}

WriterPtr makeWriter(Sink& sink) {
    xmlOutputBufferPtr output = xmlOutputBufferCreateIO(writeToSink, nullptr, &sink, nullptr);
    if (output == nullptr) throw std::bad_alloc();
    WriterPtr writer(xmlNewTextWriter(output));
    if (writer == nullptr) {
        xmlOutputBufferClose(output);
        throw std::bad_alloc();
    }
    return writer;
}

class XmlPrinter {
public:
    explicit XmlPrinter(PrintBuffer& out) : sink_{out}, writer_(makeWriter(sink_)) {
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

    /// Escaped here and not by xmlTextWriterWriteString, which leaves a text out for which it has no memory.
    void writeText(const char* text) {
        const EscapedText escaped(xmlEncodeSpecialChars(nullptr, xmlText(text)));
        if (!escaped) throw std::bad_alloc();
        check(xmlTextWriterWriteRaw(writer_.get(), escaped.get()));
    }

    void writeInteger(std::int32_t value) {
        char digits[16] = {};
        std::to_chars(digits, digits + sizeof digits - 1, value);
        writeText(digits);
    }

    /// What the writer is given is always well formed, so all that can fail is memory.
    void check(int written) const {
        if (written < 0 || sink_.failed) throw std::bad_alloc();
    }

    Sink sink_;  // outlives the writer, which flushes when it is freed
    WriterPtr writer_;
};

}  // namespace

void printXml(const Document& document, PrintBuffer& out) {
    XmlPrinter printer(out);
    walkDocument(document, printer);
    printer.finish();
}

}  // namespace epgset
