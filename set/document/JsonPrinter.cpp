#include "set/document/JsonPrinter.h"

#include <array>
#include <cstdint>
#include <string_view>

#include "set/document/DocumentWalk.h"
#include "set/text/ByteWords.h"
#include "set/text/JsonWriter.h"

namespace epgset {
namespace {

/// RapidJSON's writer looks at each character of a text. Hardly any needs an escape.
class Writer : public JsonWriter<PrintBuffer> {
public:
    using JsonWriter<PrintBuffer>::JsonWriter;

    void text(std::string_view text) {
        if (isPlain(text)) {
            plainText(text);
        } else {
            String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
        }
    }

    /// The key of a member. Members of the same key share it, so that each is looked at once.
    void key(std::string_view key) {
        const auto address = reinterpret_cast<std::uintptr_t>(key.data());
        const char*& plain = plainKeys_[address / sizeof(void*) % plainKeys_.size()];
        if (plain != key.data()) {
            if (!isPlain(key)) return text(key);
            plain = key.data();
        }
        plainText(key);
    }

private:
    static bool isPlain(std::string_view text) {
        return holdsForAllBytes(text, [](std::uint64_t word) {
            return (controlBytes(word) | bytesThatAre('"', word) | bytesThatAre('\\', word)) == 0;
        });
    }

    void plainText(std::string_view text) {
        Prefix(rapidjson::kStringType);
        os_->appendQuoted(text);
        EndValue(true);
    }

    std::array<const char*, 32> plainKeys_{};  ///< keys that need no escape, by their address
};

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
                writer_.text(member.text());
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
            writer_.key(member.key());
        } else if (!object.isList()) {
            writer_.key("item");
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
