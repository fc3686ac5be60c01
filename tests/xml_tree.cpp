#include "xml_tree.h"

#include <libxml/c14n.h>

#include <algorithm>

#include "xml/read_xml.h"

namespace quillory::test {
namespace {

// The canonical form of the tree: attributes in one order, no declaration or doctype, and none
// of the blank text that stands between elements only to indent them.
std::string canonical(const std::string& text) {
  const xml::ParsedXml parsed = xml::read_xml(text, "compared", XML_PARSE_NOBLANKS);
  if (!parsed.document || !parsed.diagnostics.empty()) return "(does not parse)";
  xmlChar* bytes = nullptr;
  const int size =
      xmlC14NDocDumpMemory(parsed.document.get(), nullptr, XML_C14N_1_0, nullptr, 0, &bytes);
  const xml::XmlString owned(bytes);
  return size < 0 ? "(cannot be canonicalised)" : std::string(reinterpret_cast<char*>(bytes), size);
}

std::string around(const std::string& text, std::size_t at) {
  const std::size_t from = at > 60 ? at - 60 : 0;
  return "\"" + text.substr(from, 120) + "\"";
}

}  // namespace

std::string tree_difference(const std::string& expected_xml, const std::string& actual_xml) {
  const std::string expected = canonical(expected_xml);
  const std::string actual = canonical(actual_xml);
  if (expected == actual) return {};
  const auto at = static_cast<std::size_t>(
      std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end()).first -
      expected.begin());
  return "expected " + around(expected, at) + ", found " + around(actual, at);
}

}  // namespace quillory::test
