#pragma once
// The media file of a placed clip item. Importers take an item's media from the item's own
// <file> and cannot read a clip item without one; some writers leave the clip items without a
// <file> and put the clip's full <file> beside its <media> instead.

#include "xml/xml_handles.h"

namespace quillory {

// The full <file> that `clip` holds as a child of its own (one with content, not a reference
// by id), or null.
const xmlNode* own_file(const xmlNode* clip);

bool has_file(const xmlNode* item);

// Gives the placed copy a copy of `file`, right after its <out> (else as its last child).
void add_file(xmlNode* item, const xmlNode* file);

}  // namespace quillory
