#include "titles/item_media.h"

#include "titles/node_copies.h"
#include "xml/xml_nodes.h"

namespace quillory {

const xmlNode* own_file(const xmlNode* clip) {
  const xmlNode* file = xml::first_child_element(clip, "file");
  return file != nullptr && file->children != nullptr ? file : nullptr;
}

bool has_file(const xmlNode* item) {
  return xml::first_child_element(item, "file") != nullptr;
}

void add_file(xmlNode* item, const xmlNode* file) {
  xml::Node copy = clean_copy(file, item->doc);
  if (xmlNode* out = xml::first_child_element(item, "out")) {
    xmlAddNextSibling(out, copy.release());
  } else {
    xmlAddChild(item, copy.release());
  }
}

}  // namespace quillory
