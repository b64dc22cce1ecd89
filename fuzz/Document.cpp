// The response document: members added as the input says, line by line, then printed both ways.
//
//   t KEY=TEXT   n KEY   i KEY=NUMBER   b KEY=WORD   { KEY   }
//
// A capital letter, or "[", in place of the first makes an unnamed element. "%" and two digits stand for a
// byte.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "fuzz/DocumentModel.h"
#include "fuzz/Input.h"
#include "fuzz/Parsing.h"
#include "fuzz/Require.h"
#include "fuzz/Target.h"
#include "host/ResponseDocument.h"
#include "set/text/Utf8.h"
#include "set/uri/UriText.h"

namespace epgfuzz {
namespace {

constexpr std::size_t deepest = 100;

struct DestroyDocument {
    void operator()(void* document) const { TARNO_rdoc_destroy(document); }
};

std::string decoded(std::string_view text) {
    std::string out(text.size(), '\0');
    out.resize(epgset::decodeUriText(text, epgset::PlusSign::Itself, out.data()).value_or(0));
    return out;
}

/// Builds a document and the model of it side by side.
class Builder {
public:
    void line(std::string_view text) {
        if (text.empty()) return;
        const char letter = text.front();
        text.remove_prefix(std::min<std::size_t>(text.size(), 2));
        if (letter == '}') {
            if (open_.size() > 1) open_.pop_back();
        } else if (letter == '{' || letter == '[') {
            object(letter == '{' ? std::optional(decoded(text)) : std::nullopt);
        } else {
            const bool named = std::islower(static_cast<unsigned char>(letter)) != 0;
            const std::string key = named ? decoded(takeUpTo(text, "=")) : "";
            value(letter, named ? key.c_str() : nullptr, decoded(text));
        }
    }

    void check() const {
        const std::string json = printed(TARNO_RDOC_JSON);
        const auto parsed = parsedJson(json);
        require(parsed.has_value(), "it is JSON", json);
        requireSameJson(model_, *parsed, true);
        const std::string xml = printed(TARNO_RDOC_XML);
        const XmlDocument tree = parsedXml(xml);
        require(tree != nullptr, "it is XML", xml);
        requireSameXml(model_, *xmlDocGetRootElement(tree.get()));
    }

private:
    struct Open {
        void* object;
        ModelObject* model;
    };

    static std::string repaired(std::string_view text) {
        return epgset::repairedUtf8(text, epgset::Utf8Repertoire::Xml);
    }

    ModelMember& member(const std::optional<std::string>& key) {
        ModelMember& added = open_.back().model->members.emplace_back();
        if (key) added.key = repaired(*key);
        return added;
    }

    void object(const std::optional<std::string>& key) {
        if (open_.size() > deepest) return;
        void* const made = TARNO_rdoc_create_object(document_.get());
        require(made != nullptr, "an object is made");
        TARNO_rdoc_add_object(open_.back().object, key ? key->c_str() : nullptr, made);
        auto model = std::make_unique<ModelObject>();
        ModelObject* const address = model.get();
        member(key).value = std::move(model);
        open_.push_back({made, address});
    }

    void value(char letter, const char* key, const std::string& text) {
        void* const to = open_.back().object;
        const auto named = key == nullptr ? std::nullopt : std::optional<std::string>(key);
        switch (std::tolower(static_cast<unsigned char>(letter))) {
            case 't':
                TARNO_rdoc_add_UTF8(to, key, text.c_str());
                member(named).value = repaired(text);
                break;
            case 'n':
                TARNO_rdoc_add_UTF8(to, key, nullptr);
                member(named);
                break;
            case 'i': {
                const auto number = static_cast<std::int32_t>(std::strtol(text.c_str(), nullptr, 10));
                TARNO_rdoc_add_integer(to, key, number);
                member(named).value = number;
                break;
            }
            case 'b':
                TARNO_rdoc_add_boolean(to, key, text.c_str());
                member(named).value = text == "true";
                break;
            default:
                break;
        }
    }

    std::string printed(int format) const {
        char* text = nullptr;
        int length = 0;
        require(TARNO_rdoc_print_opt(document_.get(), format, &text, &length, 1) == 0, "it is printed");
        const std::unique_ptr<char, void (*)(void*)> owned(text, &std::free);
        require(text[length] == '\0', "a printed text is terminated");
        return {text, static_cast<std::size_t>(length)};
    }

    std::unique_ptr<void, DestroyDocument> document_{TARNO_rdoc_create_root()};
    ModelObject model_;
    std::vector<Open> open_{{document_.get(), &model_}};
};

}  // namespace

void fuzzDocument(std::string_view input) {
    Builder builder;
    while (!input.empty())
        builder.line(takeUpTo(input, "\n"));
    builder.check();
}

}  // namespace epgfuzz
