#pragma once
// Small reads and writes on elements that every part of the system needs.

#include <optional>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "xml/xml_handles.h"

namespace quillory::xml {

// The concatenation of all text below the node.
std::string text_content(const xmlNode* node);

// Whether `node` is an element named `name`; false for none. xmeml declares no namespace, so
// an element in one belongs to another vocabulary and never matches: every lookup below by
// name follows this rule, as an XPath name test without a prefix does.
bool is_element(const xmlNode* node, const char* name);

// The first child element with the given name (what the relative XPath "name" selects), or null;
// null also for no parent, so that a path through elements a document may lack reads as absent.
xmlNode* first_child_element(const xmlNode* parent, const char* name);

// What the relative XPath ".//NAME" selects first (".//PARENT/NAME" with `parent`): the first
// element named `name` below `node` in document order, whose parent is named `parent` when
// one is given; or null. Stops at the first match, where XPath would collect them all.
xmlNode* first_descendant(const xmlNode* node, const char* name, const char* parent = nullptr);

// What the XPath "//NAME" selects in the document or subtree of `node`: every element below it
// named `name`, in document order.
std::vector<xmlNode*> all_descendants(const xmlNode* node, const char* name);

// Calls `visit` with every element below `node`, in document order.
void walk_elements(const xmlNode* node, const std::function<void(xmlNode*)>& visit);

// What the relative XPath made of the child steps `path` ("media/video/track/clipitem")
// selects from `node`, in document order; `first_element_at` the first of them, or null.
std::vector<xmlNode*> elements_at(const xmlNode* node, std::initializer_list<const char*> path);
xmlNode* first_element_at(const xmlNode* node, std::initializer_list<const char*> path);

std::optional<std::string> attribute(const xmlNode* node, const char* name);

// Replaces the element's content by one text node holding `text` as it stands: markup
// characters are escaped when the document is written, never read as entity references.
void set_text(xmlNode* element, const std::string& text);

// The element's name, the line libxml2 recorded for it and the document it comes from, e.g.
// "<clip> at line 12 of /Volumes/Edit/dailies.xml".
std::string where(const xmlNode* node);

// Replaces the text of the child `name` of `parent`, when both are there.
void set_child_text(xmlNode* parent, const char* name, const std::string& text);

// The text without the blanks (space, tab, carriage return, line feed) around it.
std::string_view trim_blanks(std::string_view text);

// Reads a leading decimal integer the way C's strtol does: leading blanks and a sign allowed,
// reading stops at the first non-digit, no digits give 0. Out-of-range values saturate.
long long leading_integer(const std::string& text);

// A URI's text with its percent-escapes decoded ("%20" a space), by libxml2; a '%' not
// followed by two hex digits is kept as written.
std::string uri_unescaped(std::string_view text);

}  // namespace quillory::xml
