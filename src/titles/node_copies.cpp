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

// A processing instruction named "xml" inside a document is the declaration of another one
// pasted into it, which the recovering parser keeps. No document may hold one there: a copy
// leaves it out, or else the written document would not parse.
bool is_stray_declaration(const xmlNode* node) {
  return node->type == XML_PI_NODE && xmlStrcasecmp(node->name, BAD_CAST "xml") == 0;
}

void remove_stray_declarations(xmlNode* element) {
  for (xmlNode* child = element->children; child != nullptr;) {
    xmlNode* next = child->next;
    if (is_stray_declaration(child)) {
      xmlUnlinkNode(child);
      xmlFreeNode(child);
    } else if (child->type == XML_ELEMENT_NODE) {
      remove_stray_declarations(child);
    }
    child = next;
  }
}

xml::Node copy_without_stray_declarations(const xmlNode* node, xmlDoc* output) {
  xml::Node copy(xmlDocCopyNode(const_cast<xmlNode*>(node), output, 1));
  if (!copy) throw std::bad_alloc();
  if (copy->type == XML_ELEMENT_NODE) remove_stray_declarations(copy.get());
  return copy;
}

xmlNode* append_copies(xmlNode* parent, xmlNode* first) {
  xmlNode* last_element = nullptr;
  for (xmlNode* source = first; source != nullptr; source = source->next) {
    if (is_stray_declaration(source)) continue;
    xml::Node copy = copy_without_stray_declarations(source, parent->doc);
    const bool is_element = copy->type == XML_ELEMENT_NODE;
    xmlNode* added = xmlAddChild(parent, copy.release());  // may merge and free a text node
    if (is_element) last_element = added;
  }
  return last_element;
}

}  // namespace

xml::Node clean_copy(const xmlNode* node, xmlDoc* output) {
  // A stray declaration's copy is empty text, which the writer writes as nothing.
  xml::Node copy = is_stray_declaration(node) ? xml::Node(xmlNewDocText(output, BAD_CAST ""))
                                              : copy_without_stray_declarations(node, output);
  if (!copy) throw std::bad_alloc();
  if (copy->type == XML_ELEMENT_NODE) remove_formatting_blanks(copy.get());
  return copy;
}

xmlNode* append_copy(xmlNode* parent, xmlNode* node) {
  if (node->type == XML_DOCUMENT_NODE || node->type == XML_HTML_DOCUMENT_NODE) {
    return append_copies(parent, node->children);
  }
  if (is_stray_declaration(node)) return nullptr;
  return xmlAddChild(parent, copy_without_stray_declarations(node, parent->doc).release());
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
