// A document as JSON.
#pragma once

#include "set/document/Document.h"
#include "set/document/PrintBuffer.h"

namespace epgset {

/// Appends the document as compact JSON. An object of unnamed elements only is an array, and so is an
/// empty object below the root; in an object of both kinds each unnamed element stands under the key
/// "item", as in XML. A key given twice stands there twice. Throws std::bad_alloc.
void printJson(const Document& document, PrintBuffer& out);

}  // namespace epgset
