// The URI records. Each is one block of memory: the record, its arrays of pointers, then its texts.
#include "host/Uri.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "set/memory/MemoryShortage.h"
#include "set/uri/UriText.h"

namespace epgset {
namespace {

struct FreeBlock {
    void operator()(void* block) const noexcept { std::free(block); }
};
template <class Record>
using RecordPtr = std::unique_ptr<Record, FreeBlock>;

/// What the arguments of a parser name; nothing for a null text.
std::optional<std::string_view> argumentText(const char* text, int length) noexcept {
    if (text == nullptr) return std::nullopt;
    if (length < 0) return std::string_view(text);
    return std::string_view(text, static_cast<std::size_t>(length));
}

/// Hands the pieces between separators, empty ones left out, to a function until it answers false.
template <class Function>
bool forEachPiece(std::string_view text, char separator, Function&& function) {
    while (!text.empty()) {
        const std::size_t end = text.find(separator);
        const std::string_view piece = text.substr(0, end);
        if (!piece.empty() && !function(piece)) return false;
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return true;
}

std::size_t countPieces(std::string_view text, char separator) {
    std::size_t count = 0;
    forEachPiece(text, separator, [&](std::string_view) { return ++count != 0; });
    return count;
}

/// An uninitialised record followed by `pointers` pointers and `bytes` bytes of text; null when there is
/// no memory or a count does not fit into the record.
template <class Record>
RecordPtr<Record> makeRecord(std::size_t count, std::size_t pointers, std::size_t bytes) noexcept {
    static_assert(sizeof(Record) % alignof(char*) == 0);
    const std::uint64_t size = sizeof(Record) + std::uint64_t{pointers} * sizeof(char*) + bytes;
    if (count > std::numeric_limits<std::int32_t>::max() || size > PTRDIFF_MAX) return nullptr;
    void* block = std::malloc(static_cast<std::size_t>(size));
    if (block == nullptr) {
        noteMemoryShortage();  // null also stands for a text without a record
        return nullptr;
    }
    return RecordPtr<Record>(new (block) Record{});
}

/// Appends texts to the text part of a record's block.
class TextPart {
public:
    explicit TextPart(void* start) : end_(static_cast<char*>(start)) {}

    /// The decoded text, NUL-terminated; null when it holds a NUL.
    char* append(std::string_view encoded, PlusSign plusSign) noexcept {
        const auto length = decodeUriText(encoded, plusSign, end_);
        if (!length) return nullptr;
        char* text = end_;
        end_ += *length;
        *end_++ = '\0';
        return text;
    }

private:
    char* end_;
};

RecordPtr<TARNO_rstr_uri_path_st> parsePath(std::string_view path) {
    const std::size_t count = countPieces(path, '/');
    auto record = makeRecord<TARNO_rstr_uri_path_st>(count, count, path.size() + count);
    if (record == nullptr) return nullptr;
    record->parts = reinterpret_cast<char**>(record.get() + 1);
    TextPart texts(record->parts + count);
    const bool decoded = forEachPiece(path, '/', [&](std::string_view segment) {
        char* part = texts.append(segment, PlusSign::Itself);
        if (part != nullptr) record->parts[record->count++] = part;
        return part != nullptr;
    });
    return decoded ? std::move(record) : nullptr;
}

RecordPtr<TARNO_rstr_uri_query_st> parseQuery(std::string_view query) {
    const std::size_t count = countPieces(query, '&');
    auto record = makeRecord<TARNO_rstr_uri_query_st>(count, 2 * count, query.size() + 2 * count);
    if (record == nullptr) return nullptr;
    record->names = reinterpret_cast<char**>(record.get() + 1);
    record->values = record->names + count;
    TextPart texts(record->values + count);
    const bool decoded = forEachPiece(query, '&', [&](std::string_view pair) {
        const std::size_t nameEnd = pair.find('=');
        char* name = texts.append(pair.substr(0, nameEnd), PlusSign::Blank);
        if (name == nullptr) return false;
        if (nameEnd != std::string_view::npos) pair.remove_prefix(nameEnd + 1);
        char* value = texts.append(nameEnd == std::string_view::npos ? "" : pair, PlusSign::Blank);
        if (value == nullptr) return false;
        record->names[record->count] = name;
        record->values[record->count++] = value;
        return true;
    });
    return decoded ? std::move(record) : nullptr;
}

}  // namespace
}  // namespace epgset

TARNO_rstr_uri_path_st* TARNO_rstr_uri_parse_path(const char* path, int length) {
    const auto text = epgset::argumentText(path, length);
    return text ? epgset::parsePath(*text).release() : nullptr;
}

TARNO_rstr_uri_query_st* TARNO_rstr_uri_parse_query(const char* query, int length) {
    const auto text = epgset::argumentText(query, length);
    return text ? epgset::parseQuery(*text).release() : nullptr;
}

void TARNO_rstr_uri_delete_path(TARNO_rstr_uri_path_st* record) {
    std::free(record);
}

void TARNO_rstr_uri_delete_query(TARNO_rstr_uri_query_st* record) {
    std::free(record);
}
