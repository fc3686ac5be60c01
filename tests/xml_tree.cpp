#include "xml_tree.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "xml/read_xml.h"

namespace quillory::test {
namespace {

std::string text_of(const xmlChar* text) {
  return text == nullptr ? std::string() : reinterpret_cast<const char*>(text);
}

bool is_text(const xmlNode* node) {
  return node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
}

bool is_blank_text(const xmlNode* node) {
  if (!is_text(node)) return false;
  const std::string text = text_of(node->content);
  return text.find_first_not_of(" \t\r\n") == std::string::npos;
}

std::vector<const xmlNode*> significant_children(const xmlNode* node) {
  std::vector<const xmlNode*> children;
  for (const xmlNode* child = node->children; child != nullptr; child = child->next) {
    if ((child->type == XML_ELEMENT_NODE || is_text(child)) && !is_blank_text(child)) {
      children.push_back(child);
    }
  }
  return children;
}

std::vector<std::pair<std::string, std::string>> attributes_of(const xmlNode* node) {
  std::vector<std::pair<std::string, std::string>> attributes;
  for (const xmlAttr* attribute = node->properties; attribute != nullptr;
       attribute = attribute->next) {
    xmlChar* value = xmlNodeGetContent(reinterpret_cast<const xmlNode*>(attribute));
    attributes.emplace_back(text_of(attribute->name), text_of(value));
    xmlFree(value);
  }
  std::sort(attributes.begin(), attributes.end());
  return attributes;
}

std::string where(const xmlNode* node) {
  return "<" + text_of(node->name) + "> at line " + std::to_string(xmlGetLineNo(node));
}

std::string difference(const xmlNode* expected, const xmlNode* actual) {
  if (is_text(expected) != is_text(actual)) {
    return "expected " + (is_text(expected) ? std::string("text") : where(expected)) + ", found " +
           (is_text(actual) ? std::string("text") : where(actual));
  }
  if (is_text(expected)) {
    const std::string a = text_of(expected->content);
    const std::string b = text_of(actual->content);
    return a == b ? std::string() : "text \"" + a + "\" became \"" + b + "\"";
  }
  if (text_of(expected->name) != text_of(actual->name)) {
    return "expected " + where(expected) + ", found " + where(actual);
  }
  if (attributes_of(expected) != attributes_of(actual)) {
    return "the attributes of " + where(expected) + " differ from those of " + where(actual);
  }
  const auto expected_children = significant_children(expected);
  const auto actual_children = significant_children(actual);
  const std::size_t common = std::min(expected_children.size(), actual_children.size());
  for (std::size_t i = 0; i < common; ++i) {
    std::string found = difference(expected_children[i], actual_children[i]);
    if (!found.empty()) return found;
  }
  if (expected_children.size() != actual_children.size()) {
    return where(expected) + " has " + std::to_string(expected_children.size()) + " children, " +
           where(actual) + " has " + std::to_string(actual_children.size());
  }
  return {};
}

}  // namespace

std::string tree_difference(const std::string& expected_xml, const std::string& actual_xml) {
  const xml::ParsedXml expected = xml::read_xml(expected_xml, "expected", 0);
  const xml::ParsedXml actual = xml::read_xml(actual_xml, "actual", 0);
  if (!expected.document || !expected.diagnostics.empty()) return "the expected XML does not parse";
  if (!actual.document || !actual.diagnostics.empty()) return "the actual XML does not parse";
  const xmlNode* expected_root = xmlDocGetRootElement(expected.document.get());
  const xmlNode* actual_root = xmlDocGetRootElement(actual.document.get());
  if (expected_root == nullptr || actual_root == nullptr) return "a document has no root element";
  return difference(expected_root, actual_root);
}

}  // namespace quillory::test
