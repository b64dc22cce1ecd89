#include "set/document/Document.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <string>

#include "set/document/DocumentFaults.h"
#include "set/memory/MemoryShortage.h"
#include "set/text/Utf8.h"

namespace epgset {
namespace {

/// A repair can make a text three times as long and an escape that six times; so the printers' 32-bit
/// lengths hold it.
constexpr std::size_t longestText = std::numeric_limits<std::uint32_t>::max() / 32;

constexpr std::size_t blockAlignment = std::max(alignof(DocumentMember), alignof(DocumentObject));

/// A text made clean; keeps what it had to write anew.
class CleanText {
public:
    explicit CleanText(std::string_view text) : text_(text) {
        if (isCleanUtf8(text, Utf8Repertoire::Xml)) return;
        repaired_ = repairedUtf8(text, Utf8Repertoire::Xml);
        text_ = repaired_;
    }
    CleanText(const CleanText&) = delete;
    CleanText& operator=(const CleanText&) = delete;

    std::string_view view() const { return text_; }

private:
    std::string repaired_;
    std::string_view text_;
};

void copyWithNul(std::string_view text, char* out) {
    if (!text.empty()) std::memcpy(out, text.data(), text.size());
    out[text.size()] = '\0';
}

bool isAncestor(const DocumentObject& candidate, const DocumentObject& object) {
    for (const DocumentObject* ancestor = &object; ancestor != nullptr; ancestor = ancestor->parent) {
        if (ancestor == &candidate) return true;
    }
    return false;
}

}  // namespace

bool DocumentObject::isList() const {
    return isEmpty() ? parent != nullptr : !hasNamed;
}

DocumentObject* Document::createObject() {
    if (!complete_ || byteCount_ > documentByteBudget()) return nullptr;
    return new (allocate(sizeof(DocumentObject))) DocumentObject(*this);
}

void Document::addObject(DocumentObject& parent, const char* key, DocumentObject& child) noexcept {
    const bool attached = child.parent != nullptr || &child == &root_;
    if (attached || &child.document != this || &parent.document != this) return;
    // Only an object that holds others can be above its new parent, so a tree that is built from the top
    // never walks up.
    if (&parent == &child || (child.hasObjects && isAncestor(child, parent))) return;
    DocumentMember* member = tryAddMember(parent, key, {});
    if (member == nullptr) return;
    member->kind = DocumentMember::Kind::Object;
    member->object = &child;
    parent.hasObjects = true;
    child.parent = &parent;
    child.place = member;
}

void Document::addText(DocumentObject& object, const char* key, const char* text) noexcept {
    DocumentMember* member = tryAddMember(object, key, text == nullptr ? std::string_view() : text);
    if (member != nullptr && text != nullptr) member->kind = DocumentMember::Kind::Text;
}

void Document::addInteger(DocumentObject& object, const char* key, std::int32_t value) noexcept {
    DocumentMember* member = tryAddMember(object, key, {});
    if (member == nullptr) return;
    member->kind = DocumentMember::Kind::Integer;
    member->integer = value;
}

void Document::addBoolean(DocumentObject& object, const char* key, bool value) noexcept {
    DocumentMember* member = tryAddMember(object, key, {});
    if (member == nullptr) return;
    member->kind = DocumentMember::Kind::Boolean;
    member->boolean = value;
}

DocumentMember* Document::addMember(DocumentObject& object, const char* key, std::string_view text) {
    const std::string_view keyText = key == nullptr ? std::string_view() : key;
    if (keyText.size() > longestText || text.size() > longestText) throw std::bad_alloc();
    const std::string_view kept = key == nullptr ? std::string_view("") : keptKey(keyText);
    const CleanText cleanText(text);
    const std::size_t textLength = cleanText.view().size();

    void* block = allocate(sizeof(DocumentMember) + textLength + 1);
    count(kept.size());  // shared, but printed each time
    auto* member = new (block) DocumentMember;
    char* const textStart = static_cast<char*>(block) + sizeof(DocumentMember);
    copyWithNul(cleanText.view(), textStart);
    member->keyStart = kept.data();
    member->keyLength = static_cast<std::uint32_t>(kept.size());
    member->textStart = textStart;
    member->textLength = static_cast<std::uint32_t>(textLength);
    member->named = key != nullptr;

    (object.first == nullptr ? object.first : object.last->next) = member;
    object.last = member;
    object.hasNamed = object.hasNamed || member->named;
    return member;
}

std::string_view Document::keptKey(std::string_view key) {
    for (std::size_t tried = 0; tried < keyCount_; ++tried) {
        const std::size_t place = nextKey_ < keyCount_ ? nextKey_ : 0;
        nextKey_ = place + 1;
        if (keys_[place] == key) return keys_[place];
    }
    const CleanText clean(key);
    char* const kept = static_cast<char*>(allocate(clean.view().size() + 1));
    copyWithNul(clean.view(), kept);
    const std::string_view view(kept, clean.view().size());
    if (keyCount_ < mostKeys && view == key) {  // another one would never be met again
        keys_[keyCount_++] = view;
        nextKey_ = keyCount_;
    }
    return view;
}

DocumentMember* Document::tryAddMember(DocumentObject& object, const char* key,
                                       std::string_view text) noexcept {
    try {
        return addMember(object, key, text);
    } catch (const std::exception&) {  // no memory, or no text that long
        noteMemoryShortage();
        complete_ = false;
        return nullptr;
    }
}

void* Document::allocate(std::size_t bytes) {
    // Rounded as the arena rounds, so that the count is not below the memory used.
    bytes = (bytes + blockAlignment - 1) / blockAlignment * blockAlignment;
    count(bytes);
    return arena_.allocate(bytes, blockAlignment);
}

void Document::count(std::size_t bytes) {
    if (byteCount_ + bytes > 2 * documentByteBudget()) throw std::bad_alloc();
    byteCount_ += bytes;
}

}  // namespace epgset
