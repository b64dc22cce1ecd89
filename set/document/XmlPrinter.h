// A document as XML.
#pragma once

#include "set/document/Document.h"
#include "set/document/PrintBuffer.h"

namespace epgset {

/// Appends the document as XML 1.0 in UTF-8: root element `response`, an element named by its key for
/// each member, `item` for an unnamed one, `<member name="KEY">` for a key that is no name without a
/// colon. A member without value and an empty object are empty elements. Throws std::bad_alloc.
void printXml(const Document& document, PrintBuffer& out);

}  // namespace epgset
