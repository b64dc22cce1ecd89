#include "set/guide/XmltvReader.h"

#include <libxml/xmlreader.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

#include "set/guide/GuideError.h"
#include "set/guide/GuideFile.h"
#include "set/guide/WhiteSpace.h"

namespace epgset {
namespace {

struct ReaderCloser {
    void operator()(xmlTextReader* reader) const { xmlFreeTextReader(reader); }
};

struct TextFreer {
    void operator()(xmlChar* text) const { xmlFree(text); }
};

std::string_view view(const xmlChar* text) {
    return text == nullptr ? std::string_view() : std::string_view(reinterpret_cast<const char*>(text));
}

/// The first error that the library reports of a document.
struct FirstError {
    int code = 0;
    int line = 0;
    std::string message;
};

// The library declares the error mutable in some releases and constant in others.
template <typename Error>
void keepFirstError(void* context, Error error) {
    auto& first = *static_cast<FirstError*>(context);
    if (error->level < XML_ERR_ERROR || !first.message.empty()) return;
    first.code = error->code;
    first.line = error->line;
    first.message = error->message == nullptr ? "not well-formed" : withCollapsedSpace(error->message);
}

int readFile(void* file, char* buffer, int size) {
    return static_cast<GuideFile*>(file)->read(buffer, size);
}

int leaveOpen(void*) {
    return 0;
}

/// Follows the nodes of one document and hands its records over.
class DocumentWalk {
public:
    DocumentWalk(xmlTextReader* reader, const GuideFile& file, XmltvSink& sink)
        : reader_(reader), file_(file), sink_(sink) {}

    /// Takes the node on which the reader stands.
    void node();

private:
    enum class Record { None, Channel, Programme };

    void startElement();
    void startRecord(std::string_view name);
    void startField(std::string_view name);
    void endField();
    void endRecord();
    std::string attribute(const char* name) const;
    int nodeLine() const;

    xmlTextReader* reader_;
    const GuideFile& file_;
    XmltvSink& sink_;
    Record record_ = Record::None;
    XmltvChannel channel_;
    XmltvProgramme programme_;
    bool hasTitle_ = false;
    bool hasSynopsis_ = false;
    std::string* field_ = nullptr;  ///< where the text of the field in hand goes
    std::string text_;              ///< what of it was read
    int lineAfterText_ = 1;         ///< where the text read last ends
};

void DocumentWalk::node() {
    switch (xmlTextReaderNodeType(reader_)) {
        case XML_READER_TYPE_ELEMENT:
            startElement();
            break;
        case XML_READER_TYPE_END_ELEMENT:
            if (xmlTextReaderDepth(reader_) == 2) endField();
            if (xmlTextReaderDepth(reader_) == 1) endRecord();
            break;
        case XML_READER_TYPE_TEXT:
        case XML_READER_TYPE_CDATA:
        case XML_READER_TYPE_WHITESPACE:
        case XML_READER_TYPE_SIGNIFICANT_WHITESPACE:
            if (field_ != nullptr) text_ += view(xmlTextReaderConstValue(reader_));
            lineAfterText_ = std::max(lineAfterText_, nodeLine());
            break;
        case XML_READER_TYPE_ENTITY_REFERENCE:
            if (field_ != nullptr)
                text_.append("&").append(view(xmlTextReaderConstName(reader_))).append(";");
            break;
        default:
            break;
    }
}

void DocumentWalk::startElement() {
    const int depth = xmlTextReaderDepth(reader_);
    const std::string_view name = view(xmlTextReaderConstLocalName(reader_));
    const bool empty = xmlTextReaderIsEmptyElement(reader_) == 1;
    if (depth == 0 && name != "tv") {
        throw GuideError(file_.name(), xmlTextReaderGetParserLineNumber(reader_),
                         "not an XMLTV guide: the root element is <" + std::string(name) + ">, not <tv>");
    }
    if (depth == 1) {
        startRecord(name);
        if (empty) endRecord();
    } else if (depth == 2) {
        startField(name);
        if (empty) endField();
    }
}

void DocumentWalk::startRecord(std::string_view name) {
    // The library tells lines from 65535 on of texts alone; what stands before a record ends where it begins.
    const int line = nodeLine() < 65535 ? nodeLine() : lineAfterText_;
    if (name == "channel") {
        record_ = Record::Channel;
        channel_ = {};
        channel_.id = attribute("id");
        channel_.line = line;
    } else if (name == "programme") {
        record_ = Record::Programme;
        programme_ = {};
        programme_.line = line;
        programme_.start = attribute("start");
        programme_.stop = attribute("stop");
        programme_.channel = attribute("channel");
        programme_.clumpidx = attribute("clumpidx");
        hasTitle_ = false;
        hasSynopsis_ = false;
    }
}

void DocumentWalk::startField(std::string_view name) {
    if (record_ == Record::Channel) {
        if (name == "display-name") field_ = &channel_.displayNames.emplace_back();
        if (name == "lcn" && channel_.lcn.empty()) field_ = &channel_.lcn;
    } else if (record_ == Record::Programme) {
        if (name == "title" && !hasTitle_) {
            hasTitle_ = true;
            field_ = &programme_.title;
        } else if (name == "desc" && !hasSynopsis_) {
            hasSynopsis_ = true;
            field_ = &programme_.synopsis;
        } else if (name == "episode-num" || name == "previously-shown") {
            programme_.episode = true;
        }
    }
    text_.clear();
}

void DocumentWalk::endField() {
    if (field_ != nullptr) *field_ = withCollapsedSpace(text_);
    field_ = nullptr;
}

void DocumentWalk::endRecord() {
    if (record_ == Record::Channel) sink_.channel(channel_);
    if (record_ == Record::Programme) sink_.programme(programme_);
    record_ = Record::None;
}

std::string DocumentWalk::attribute(const char* name) const {
    const std::unique_ptr<xmlChar, TextFreer> value(
        xmlTextReaderGetAttribute(reader_, reinterpret_cast<const xmlChar*>(name)));
    return std::string(view(value.get()));
}

int DocumentWalk::nodeLine() const {
    return static_cast<int>(xmlGetLineNo(xmlTextReaderCurrentNode(reader_)));
}

}  // namespace

void readXmltv(const std::filesystem::path& path, const std::string& name, XmltvSink& sink) {
    GuideFile file(path, name);
    const std::unique_ptr<xmlTextReader, ReaderCloser> reader(
        xmlReaderForIO(readFile, leaveOpen, &file, nullptr, nullptr,
                       XML_PARSE_NONET | XML_PARSE_COMPACT | XML_PARSE_BIG_LINES));
    if (!reader) {
        if (!file.failure().empty()) throw GuideError(file.name(), 0, file.failure());
        throw GuideError(file.name(), 0, "cannot be read: out of memory");
    }
    FirstError error;
    xmlTextReaderSetStructuredErrorHandler(reader.get(), keepFirstError, &error);

    DocumentWalk walk(reader.get(), file, sink);
    int state = 0;
    while ((state = xmlTextReaderRead(reader.get())) == 1)
        walk.node();

    // Of two reasons the one that lies deeper: data that end too early are no well-formed XML either.
    const bool complete = state == 0 && file.readToEnd();
    if (complete) return;
    if (error.line == 0) error.line = xmlTextReaderGetParserLineNumber(reader.get());
    if (!file.failure().empty()) throw GuideError(file.name(), error.line, file.failure());
    if (error.message.empty()) error.message = "not well-formed";
    // The library tells a document that is cut off from one that goes on behind its end by neither code nor
    // text.
    if (error.code == XML_ERR_DOCUMENT_END)
        error.message = "it ends too early or goes on behind its root element";
    throw GuideError(file.name(), error.line, "not a well-formed XML document: " + error.message);
}

}  // namespace epgset
