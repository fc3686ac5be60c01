#include "xml/xml_nodes.h"

#include <libxml/uri.h>

#include <cctype>
#include <climits>
#include <cstdint>
#include <cstring>

namespace quillory::xml {

bool is_element(const xmlNode* node, const char* name) {
  return node != nullptr && node->type == XML_ELEMENT_NODE && node->ns == nullptr &&
         std::strcmp(reinterpret_cast<const char*>(node->name), name) == 0;
}

namespace {

// Appends to `found` the elements below `node` along the remaining steps, in document order;
// stops once `found` holds `limit` of them.
void collect_at(const xmlNode* node, const char* const* step, const char* const* end,
                std::vector<xmlNode*>& found, std::size_t limit) {
  for (xmlNode* child = node->children; child != nullptr && found.size() < limit;
       child = child->next) {
    if (!is_element(child, *step)) continue;
    if (step + 1 == end) {
      found.push_back(child);
    } else {
      collect_at(child, step + 1, end, found, limit);
    }
  }
}

}  // namespace

namespace {

// Walks the elements below `node` in document order, without recursion, until `visit` returns
// true; returns the element it stopped at, or null.
template <class Visit>
xmlNode* walk_below(const xmlNode* node, Visit visit) {
  const xmlNode* current = node->children;
  while (current != nullptr) {
    if (current->type == XML_ELEMENT_NODE && visit(current)) return const_cast<xmlNode*>(current);
    if (current->type == XML_ELEMENT_NODE && current->children != nullptr) {
      current = current->children;
      continue;
    }
    while (current != node && current->next == nullptr) current = current->parent;
    current = current == node ? nullptr : current->next;
  }
  return nullptr;
}

}  // namespace

xmlNode* first_descendant(const xmlNode* node, const char* name, const char* parent) {
  return walk_below(node, [name, parent](const xmlNode* element) {
    return is_element(element, name) &&
           (parent == nullptr || is_element(element->parent, parent));
  });
}

void walk_elements(const xmlNode* node, const std::function<void(xmlNode*)>& visit) {
  walk_below(node, [&visit](const xmlNode* element) {
    visit(const_cast<xmlNode*>(element));
    return false;
  });
}

std::vector<xmlNode*> all_descendants(const xmlNode* node, const char* name) {
  std::vector<xmlNode*> found;
  walk_below(node, [name, &found](const xmlNode* element) {
    if (is_element(element, name)) found.push_back(const_cast<xmlNode*>(element));
    return false;
  });
  return found;
}

std::vector<xmlNode*> elements_at(const xmlNode* node, std::initializer_list<const char*> path) {
  std::vector<xmlNode*> found;
  if (path.size() > 0) collect_at(node, path.begin(), path.end(), found, SIZE_MAX);
  return found;
}

xmlNode* first_element_at(const xmlNode* node, std::initializer_list<const char*> path) {
  std::vector<xmlNode*> found;
  if (path.size() > 0) collect_at(node, path.begin(), path.end(), found, 1);
  return found.empty() ? nullptr : found.front();
}

std::string text_content(const xmlNode* node) {
  if (node == nullptr) return {};
  XmlString content(xmlNodeGetContent(node));
  return content ? std::string(reinterpret_cast<const char*>(content.get())) : std::string();
}

xmlNode* first_child_element(const xmlNode* parent, const char* name) {
  for (xmlNode* child = parent != nullptr ? parent->children : nullptr; child != nullptr; child = child->next) {
    if (is_element(child, name)) return child;
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

void set_child_text(xmlNode* parent, const char* name, const std::string& text) {
  if (parent == nullptr) return;
  if (xmlNode* child = first_child_element(parent, name)) set_text(child, text);
}

std::string_view trim_blanks(std::string_view text) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && blank(text.back())) text.remove_suffix(1);
  return text;
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

std::string uri_unescaped(std::string_view text) {
  if (text.empty()) return {};  // a length of 0 would have libxml2 read up to a NUL
  const XmlString decoded(reinterpret_cast<xmlChar*>(
      xmlURIUnescapeString(text.data(), static_cast<int>(text.size()), nullptr)));
  return decoded ? reinterpret_cast<const char*>(decoded.get()) : std::string(text);
}

}  // namespace quillory::xml
