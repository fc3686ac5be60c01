#pragma once
// Copies of source nodes as the output document takes them: never with what the recovering
// parser kept from a broken source that would make the output fail to parse (another
// document's declaration, a name with a prefix bound to no namespace).

#include "xml/xml_handles.h"

namespace quillory {

// A deep copy of `node` made for `output`, unlinked, that leaves out what may not be written
// (see above): `node` itself must be writable. The caller owns it.
xml::Node writable_copy(const xmlNode* node, xmlDoc* output);

// The same, also without the blank text between its elements, and empty text for a `node`
// that may not be written.
xml::Node clean_copy(const xmlNode* node, xmlDoc* output);

// Appends a copy of `node` as the last child of `parent`; a parsed fragment (a document)
// contributes its top-level nodes. Returns the last element appended, or null.
xmlNode* append_copy(xmlNode* parent, xmlNode* node);

// The empty sequence and the built-in title carry their own indentation while the copied clip
// items carry none. Dropping the blank text between elements lets the writer indent the whole
// document alike; text inside an element without child elements (a title made only of empty
// lines, say) is content and stays.
void remove_formatting_blanks(xmlNode* element);

// The placed items bring their links from the source document; the track and clip indexes in
// them point into that document's sequences, so they go.
void remove_link_indexes(xmlNode* item);

}  // namespace quillory
