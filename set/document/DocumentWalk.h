// The order in which the members of a document are printed.
#pragma once

#include "set/document/Document.h"

namespace epgset {

/// Goes through the attached members of a document, without recursion, however deep it is nested. The
/// visitor has
///   open(object)           before an object's members; object.place is null for the root
///   close(object)          after them
///   value(object, member)  for a member of the object that is no object itself
template <class Visitor>
void walkDocument(const Document& document, Visitor& visitor) {
    const DocumentObject* object = &document.root();
    const DocumentMember* member = object->first;
    visitor.open(*object);
    for (;;) {
        if (member == nullptr) {
            visitor.close(*object);
            if (object->parent == nullptr) return;
            member = object->place->next;
            object = object->parent;
        } else if (member->kind == DocumentMember::Kind::Object) {
            object = member->object;
            member = object->first;
            visitor.open(*object);
        } else {
            visitor.value(*object, *member);
            member = member->next;
        }
    }
}

}  // namespace epgset
