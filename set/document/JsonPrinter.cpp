#include "set/document/JsonPrinter.h"

#include "set/document/DocumentWalk.h"
#include "set/text/JsonWriter.h"

namespace epgset {
namespace {

using Writer = JsonWriter<PrintBuffer>;

class JsonPrinter {
public:
    explicit JsonPrinter(PrintBuffer& out) : writer_(out) {}

    void open(const DocumentObject& object) {
        if (object.parent != nullptr) writeKey(*object.parent, *object.place);
        object.isList() ? writer_.StartArray() : writer_.StartObject();
    }

    void close(const DocumentObject& object) { object.isList() ? writer_.EndArray() : writer_.EndObject(); }

    void value(const DocumentObject& object, const DocumentMember& member) {
        writeKey(object, member);
        switch (member.kind) {
            case DocumentMember::Kind::Text:
                writer_.String(member.text().data(), member.textLength);
                break;
            case DocumentMember::Kind::Integer:
                writer_.Int(member.integer);
                break;
            case DocumentMember::Kind::Boolean:
                writer_.Bool(member.boolean);
                break;
            case DocumentMember::Kind::Null:
            case DocumentMember::Kind::Object:  // never comes here: the walk opens it
                writer_.Null();
                break;
        }
    }

private:
    void writeKey(const DocumentObject& object, const DocumentMember& member) {
        if (member.named) {
            writer_.Key(member.keyStart, member.keyLength);
        } else if (!object.isList()) {
            writer_.Key("item", 4);
        }
    }

    Writer writer_;
};

}  // namespace

void printJson(const Document& document, PrintBuffer& out) {
    JsonPrinter printer(out);
    walkDocument(document, printer);
}

}  // namespace epgset
