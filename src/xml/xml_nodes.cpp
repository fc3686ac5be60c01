#include "xml/xml_nodes.h"

#include <cctype>
#include <climits>
#include <cstring>

namespace quillory::xml {
namespace {

bool is_element_named(const xmlNode* node, const char* name) {
  return node->type == XML_ELEMENT_NODE && node->ns == nullptr &&
         std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0;
}

}  // namespace

std::string text_content(const xmlNode* node) {
  if (node == nullptr) return {};
  XmlString content(xmlNodeGetContent(node));
  return content ? std::string(reinterpret_cast<const char*>(content.get())) : std::string();
}

xmlNode* first_child_element(const xmlNode* parent, const char* name) {
  for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
    if (is_element_named(child, name)) return child;
  }
  return nullptr;
}

xmlNode* last_child_element(const xmlNode* parent, const char* name) {
  for (xmlNode* child = parent->last; child != nullptr; child = child->prev) {
    if (is_element_named(child, name)) return child;
  }
  return nullptr;
}

std::optional<std::string> attribute(const xmlNode* node, const char* name) {
  if (!xmlHasProp(node, reinterpret_cast<const xmlChar*>(name))) return std::nullopt;
  XmlString value(xmlGetProp(node, reinterpret_cast<const xmlChar*>(name)));
  return value ? std::string(reinterpret_cast<const char*>(value.get())) : std::string();
}

void set_text(xmlNode* element, const std::string& text) {
  xmlNodeSetContent(element, nullptr);
  xmlNodeAddContentLen(element, reinterpret_cast<const xmlChar*>(text.data()),
                       static_cast<int>(text.size()));
}

std::string where(const xmlNode* node) {
  std::string text = "<" + std::string(reinterpret_cast<const char*>(node->name)) + ">";
  const long line = xmlGetLineNo(node);
  if (line > 0) text += " at line " + std::to_string(line);
  if (node->doc != nullptr && node->doc->URL != nullptr) {
    text += std::string(line > 0 ? " of " : " in ") + reinterpret_cast<const char*>(node->doc->URL);
  }
  return text;
}

long long leading_integer(const std::string& text) {
  std::size_t i = 0;
  while (i < text.size() && std::isspace(static_cast<unsigned char>(text[i]))) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
  long long value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    const int digit = text[i] - '0';
    if (value > (LLONG_MAX - digit) / 10) return negative ? LLONG_MIN : LLONG_MAX;
    value = value * 10 + digit;
  }
  return negative ? -value : value;
}

}  // namespace quillory::xml
