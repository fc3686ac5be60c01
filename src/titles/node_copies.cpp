#include "titles/node_copies.h"

#include <new>

#include "xml/xml_nodes.h"

namespace quillory {
namespace {

bool is_blank(const xmlNode* node) {
  if (node->type != XML_TEXT_NODE || node->content == nullptr) return false;
  for (const xmlChar* c = node->content; *c != 0; ++c) {
    if (*c != ' ' && *c != '\t' && *c != '\n' && *c != '\r') return false;
  }
  return true;
}

// What the recovering parser keeps from a broken document that no document may hold, so that
// a copy leaves it out, or else the written document would not parse:
// - a processing instruction named "xml" inside a document: the declaration of another one
//   pasted into it;
// - an element or attribute whose name keeps a colon without a namespace ("timebase:",
//   "a:b" with "a" bound nowhere): the parser keeps a name it could not split into a bound
//   prefix and a local name as written;
// - a repeated attribute;
// - a comment that holds "--" or ends in "-".
bool is_stray_declaration(const xmlNode* node) {
  return node->type == XML_PI_NODE && xmlStrcasecmp(node->name, BAD_CAST "xml") == 0;
}

bool unbound_name(const xmlChar* name, const xmlNs* ns) {
  return ns == nullptr && name != nullptr && xmlStrchr(name, ':') != nullptr;
}

// A comment holding "--", or ending in "-", which the recovering parser keeps.
bool is_broken_comment(const xmlNode* node) {
  if (node->type != XML_COMMENT_NODE || node->content == nullptr) return false;
  const int length = xmlStrlen(node->content);
  return xmlStrstr(node->content, BAD_CAST "--") != nullptr ||
         (length > 0 && node->content[length - 1] == '-');
}

bool is_unwritable(const xmlNode* node) {
  return is_stray_declaration(node) || is_broken_comment(node) ||
         (node->type == XML_ELEMENT_NODE && unbound_name(node->name, node->ns));
}

// The attribute is one the element has before it: the recovering parser keeps a repeated
// attribute, which every reading of the element ignores, reading the first.
bool repeated(const xmlAttr* attribute) {
  for (const xmlAttr* before = attribute->prev; before != nullptr; before = before->prev) {
    if (before->ns == attribute->ns && xmlStrEqual(before->name, attribute->name)) return true;
  }
  return false;
}

void remove_unwritable_attributes(xmlNode* element) {
  for (xmlAttr* attribute = element->properties; attribute != nullptr;) {
    xmlAttr* next = attribute->next;
    if (unbound_name(attribute->name, attribute->ns) || repeated(attribute)) {
      xmlRemoveProp(attribute);
    }
    attribute = next;
  }
}

void remove_unwritable(xmlNode* element) {
  remove_unwritable_attributes(element);
  for (xmlNode* child = element->children; child != nullptr;) {
    xmlNode* next = child->next;
    if (is_unwritable(child)) {
      xmlUnlinkNode(child);
      xmlFreeNode(child);
    } else if (child->type == XML_ELEMENT_NODE) {
      remove_unwritable(child);
    }
    child = next;
  }
}

xmlNode* append_copies(xmlNode* parent, xmlNode* first) {
  xmlNode* last_element = nullptr;
  for (xmlNode* source = first; source != nullptr; source = source->next) {
    if (is_unwritable(source)) continue;
    xml::Node copy = writable_copy(source, parent->doc);
    const bool is_element = copy->type == XML_ELEMENT_NODE;
    xmlNode* added = xmlAddChild(parent, copy.release());  // may merge and free a text node
    if (is_element) last_element = added;
  }
  return last_element;
}

}  // namespace

xml::Node writable_copy(const xmlNode* node, xmlDoc* output) {
  xml::Node copy(xmlDocCopyNode(const_cast<xmlNode*>(node), output, 1));
  if (!copy) throw std::bad_alloc();
  if (copy->type == XML_ELEMENT_NODE) remove_unwritable(copy.get());
  return copy;
}

xml::Node clean_copy(const xmlNode* node, xmlDoc* output) {
  // What may not be written is copied as empty text, which the writer writes as nothing.
  xml::Node copy = is_unwritable(node) ? xml::Node(xmlNewDocText(output, BAD_CAST ""))
                                              : writable_copy(node, output);
  if (!copy) throw std::bad_alloc();
  if (copy->type == XML_ELEMENT_NODE) remove_formatting_blanks(copy.get());
  return copy;
}

xmlNode* append_copy(xmlNode* parent, xmlNode* node) {
  if (node->type == XML_DOCUMENT_NODE || node->type == XML_HTML_DOCUMENT_NODE) {
    return append_copies(parent, node->children);
  }
  if (is_unwritable(node)) return nullptr;
  return xmlAddChild(parent, writable_copy(node, parent->doc).release());
}

void remove_formatting_blanks(xmlNode* element) {
  bool has_child_element = false;
  for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
    has_child_element = has_child_element || child->type == XML_ELEMENT_NODE;
  }
  if (!has_child_element) return;
  for (xmlNode* child = element->children; child != nullptr;) {
    xmlNode* next = child->next;
    if (is_blank(child)) {
      xmlUnlinkNode(child);
      xmlFreeNode(child);
    } else if (child->type == XML_ELEMENT_NODE) {
      remove_formatting_blanks(child);
    }
    child = next;
  }
}

void remove_link_indexes(xmlNode* item) {
  std::vector<xmlNode*> links = xml::all_descendants(item, "link");
  if (xml::is_element(item, "link")) links.insert(links.begin(), item);
  // Innermost first: an index removed from an outer link may hold a link of its own, which is
  // freed with it and must not be visited afterwards.
  for (auto link_at = links.rbegin(); link_at != links.rend(); ++link_at) {
    xmlNode* link = *link_at;
    for (const char* index : {"mediatype", "trackindex", "clipindex", "groupindex"}) {
      while (xmlNode* child = xml::first_child_element(link, index)) {
        xmlUnlinkNode(child);
        xmlFreeNode(child);
      }
    }
  }
}

}  // namespace quillory
