#pragma once
// The single entry point through which the system parses XML and HTML text. Every parse runs
// with network access off and without entity substitution, and collects the parser's
// diagnostics through a structured error handler installed for that parse only.

#include <string>
#include <string_view>
#include <vector>

#include "xml/xml_handles.h"

namespace quillory::xml {

struct Diagnostic {
  int line = 0;  // 1-based line of the parsed text; 0 when the parser knows none
  int level = 0;  // xmlErrorLevel
  int code = 0;   // xmlParserErrors
  std::string message;
  // Bytes of the parsed text before the place the parser stood on; -1 when it knows none.
  long offset = -1;
};

struct ParsedXml {
  Document document;  // null when the parser could not build a document at all
  std::vector<Diagnostic> diagnostics;
};

// Parses XML text. `source_name` names the text in diagnostics (usually the file path);
// `options` are added to the safe defaults (XML_PARSE_NONET), e.g. XML_PARSE_RECOVER.
ParsedXml read_xml(std::string_view text, const std::string& source_name, int options);

// The same, with the text handed to the parser a block at a time, as a file is read: libxml2
// holds a text node to its size limit only where the text arrives in pieces.
ParsedXml read_xml_in_blocks(std::string_view text, const std::string& source_name, int options);

// Parses text as an HTML fragment: the returned document's top-level nodes are the fragment's
// nodes, with no implied html or body element. Throws when nothing could be parsed.
Document read_html_fragment(std::string_view text, const std::string& source_name);

// Formats a diagnostic for a user: "<source>:<line>: <message>".
std::string describe(const Diagnostic& diagnostic, const std::string& source_name);

}  // namespace quillory::xml
