// A response document: a tree of members in one arena.
//
// Texts are repaired when they are added, so that a document never holds anything but valid UTF-8 made
// of characters that XML 1.0 can hold, whichever format it is printed in. A document belongs to one
// thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <string_view>

namespace epgset {

class Document;
struct DocumentObject;

/// One key and value of an object, or one unnamed element.
struct DocumentMember {
    enum class Kind : std::uint8_t { Null, Text, Integer, Boolean, Object };

    DocumentMember* next = nullptr;  ///< the one added after it
    const char* keyStart = nullptr;  ///< ended by a NUL, as the text is
    const char* textStart = nullptr;
    std::uint32_t keyLength = 0;
    std::uint32_t textLength = 0;
    union {
        std::int32_t integer = 0;
        bool boolean;
        DocumentObject* object;
    };
    Kind kind = Kind::Null;
    bool named = false;

    std::string_view key() const { return {keyStart, keyLength}; }
    std::string_view text() const { return {textStart, textLength}; }
};

/// An object of a document. Its address does not change.
struct DocumentObject {
    explicit DocumentObject(Document& owner) : document(owner) {}

    Document& document;
    DocumentObject* parent = nullptr;  ///< null while it is not attached, and for the root
    DocumentMember* place = nullptr;   ///< the parent's member that holds it
    DocumentMember* first = nullptr;
    DocumentMember* last = nullptr;
    bool hasNamed = false;    ///< whether a member has a key
    bool hasObjects = false;  ///< whether a member is an object

    bool isEmpty() const { return first == nullptr; }

    /// Whether it prints as a list: made of unnamed elements, or empty and not the root.
    bool isList() const;
};

/// Owner of the tree. Nothing that it hands out outlives it.
class Document {
public:
    Document() : root_(*this) {}
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    DocumentObject& root() { return root_; }
    const DocumentObject& root() const { return root_; }

    /// A new object that is not attached yet; null when the document has passed its byte budget or lost a
    /// member. Throws std::bad_alloc.
    DocumentObject* createObject();

    /// Attaches an object of this document that is not attached yet. Ignored for one that is, for the
    /// root, for an object of another document, and where it would close a cycle.
    void addObject(DocumentObject& parent, const char* key, DocumentObject& child) noexcept;

    /// Adds a text, or a member without value for null. This and the following: a null key makes an
    /// unnamed element; a member for which there is no room is lost.
    void addText(DocumentObject& object, const char* key, const char* text) noexcept;
    void addInteger(DocumentObject& object, const char* key, std::int32_t value) noexcept;
    void addBoolean(DocumentObject& object, const char* key, bool value) noexcept;

    /// Whether every member that was added is there. Members may take the document past its budget, so
    /// that the object being filled is whole; one that would take it past twice the budget is lost.
    bool isComplete() const { return complete_; }

    /// Bytes of all members, each with its key and text, and objects.
    std::size_t byteCount() const { return byteCount_; }

private:
    DocumentMember* addMember(DocumentObject& object, const char* key, std::string_view text);
    DocumentMember* tryAddMember(DocumentObject& object, const char* key, std::string_view text) noexcept;
    void* allocate(std::size_t bytes);
    void count(std::size_t bytes);
    std::string_view keptKey(std::string_view key);

    /// Keys of members that came before, as they stand in the arena: objects of a list have the same ones, in
    /// the same order.
    static constexpr std::size_t mostKeys = 24;
    std::array<std::string_view, mostKeys> keys_;
    std::size_t keyCount_ = 0;
    std::size_t nextKey_ = 0;  ///< the one behind that which came last

    std::pmr::monotonic_buffer_resource arena_{16 * 1024};
    std::size_t byteCount_ = 0;
    bool complete_ = true;
    DocumentObject root_;
};

}  // namespace epgset
