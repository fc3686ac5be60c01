#include "xml/read_xml.h"

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>

#include <algorithm>
#include <climits>
#include <stdexcept>

#include "xml/diagnostic_collector.h"

namespace quillory::xml {
namespace {

int checked_length(std::string_view text, const std::string& source_name) {
  if (text.size() > static_cast<std::size_t>(INT_MAX)) {
    throw std::runtime_error("quillory: " + source_name + " is larger than 2 GiB and cannot be read");
  }
  return static_cast<int>(text.size());
}

// libxml2 records the name as an escaped URI ("Edit%201.xml"); messages name the file as the
// user wrote it.
void keep_name(xmlDoc* doc, const std::string& source_name) {
  if (doc == nullptr) return;
  xmlFree(const_cast<xmlChar*>(doc->URL));
  doc->URL = xmlStrdup(BAD_CAST source_name.c_str());
}

// The one place where XML is parsed: `parse` is given the options to use, which never include
// entity substitution or DTD loading, so a document cannot make the parser fetch or expand
// anything outside the text it was given. Big line numbers keep the lines named in messages
// right past line 65535 of a large export.
template <class Parse>
ParsedXml parse_safely(const std::string& source_name, int options, Parse parse) {
  const int safe_options =
      (options | XML_PARSE_NONET | XML_PARSE_BIG_LINES) & ~(XML_PARSE_NOENT | XML_PARSE_DTDLOAD);
  ParsedXml result;
  DiagnosticCollector collector;
  result.document.reset(parse(safe_options));
  result.diagnostics = collector.take();
  keep_name(result.document.get(), source_name);
  return result;
}

}  // namespace

ParsedXml read_xml(std::string_view text, const std::string& source_name, int options) {
  const int length = checked_length(text, source_name);
  return parse_safely(source_name, options, [&](int safe_options) {
    return xmlReadMemory(text.data(), length, source_name.c_str(), nullptr, safe_options);
  });
}

namespace {

int read_block(void* context, char* buffer, int length) {
  auto& rest = *static_cast<std::string_view*>(context);
  const std::size_t count = std::min(rest.size(), static_cast<std::size_t>(length));
  rest.copy(buffer, count);
  rest.remove_prefix(count);
  return static_cast<int>(count);
}

}  // namespace

ParsedXml read_xml_in_blocks(std::string_view text, const std::string& source_name, int options) {
  std::string_view rest = text;
  return parse_safely(source_name, options, [&](int safe_options) {
    return xmlReadIO(&read_block, nullptr, &rest, source_name.c_str(), nullptr, safe_options);
  });
}

Document read_html_fragment(std::string_view text, const std::string& source_name) {
  DiagnosticCollector collector;
  Document doc(reinterpret_cast<xmlDoc*>(htmlReadMemory(
      text.data(), checked_length(text, source_name), source_name.c_str(), "UTF-8",
      HTML_PARSE_NOIMPLIED | HTML_PARSE_NODEFDTD | HTML_PARSE_NONET | HTML_PARSE_NOERROR | HTML_PARSE_NOWARNING)));
  auto diagnostics = collector.take();
  if (!doc || doc->children == nullptr) {
    std::string reason = diagnostics.empty() ? "no element found"
                                             : describe(diagnostics.back(), source_name);
    throw std::runtime_error("quillory: cannot parse the " + source_name + " fragment: " + reason);
  }
  return doc;
}

std::string describe(const Diagnostic& diagnostic, const std::string& source_name) {
  std::string where = source_name;
  if (diagnostic.line > 0) where += ":" + std::to_string(diagnostic.line);
  return where + ": " + diagnostic.message;
}

}  // namespace quillory::xml
