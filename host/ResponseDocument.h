// The web server's document builder: the tree of members that an answer is printed from.
//
// A document is its own root object. Objects belong to their document from the moment they are made,
// whether they are attached or not, and go with it. A handle stays valid until then, and members may
// be added to an object before and after it is attached. Keys and texts are copied. A null key adds
// an unnamed element; an object of unnamed elements prints as a list. Members keep their order. A
// document belongs to one thread at a time.
#pragma once

#include "host/Export.h"

extern "C" {

/// Formats of TARNO_rdoc_print_opt.
enum TARNO_rdoc_format { TARNO_RDOC_XML = 1, TARNO_RDOC_JSON = 2 };

/// A new empty document; null when it cannot be made. The caller destroys it.
HOST_API void* TARNO_rdoc_create_root(void);

/// A new empty object owned by `document`; null when it cannot be made or when the document has
/// reached its size limit.
HOST_API void* TARNO_rdoc_create_object(void* document);

/// Attaches `child` to `parent`, once. A null handle is ignored, in this and all following calls.
HOST_API void TARNO_rdoc_add_object(void* parent, const char* key, void* child);

/// Adds a text; a null text is a member without value.
HOST_API void TARNO_rdoc_add_UTF8(void* object, const char* key, const char* text);

/// Adds a number.
HOST_API void TARNO_rdoc_add_integer(void* object, const char* key, int value);

/// Adds a boolean, given as the text "true" or "false"; any other text counts as false.
HOST_API void TARNO_rdoc_add_boolean(void* object, const char* key, const char* value);

/// Prints the document as TARNO_RDOC_XML or TARNO_RDOC_JSON. Answers 0 and hands out a text with its
/// length in bytes, which the caller releases with free; any other answer is a failure, which hands
/// out nothing: another format, no memory, or a member lost earlier for want of room. `option` is 1.
HOST_API int TARNO_rdoc_print_opt(void* document, int format, char** text, int* length, int option);

/// Frees the document and every object made against it; null is accepted.
HOST_API void TARNO_rdoc_destroy(void* document);
}
