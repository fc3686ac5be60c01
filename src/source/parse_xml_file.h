#pragma once
// Loading a source document, repairing text that is not well-formed UTF-8.

#include <optional>
#include <string>

#include "source/line_sink.h"
#include "xml/xml_handles.h"

namespace quillory {

// A comment or processing instruction that the writer put before the root element (some
// write their name and version there).
struct NodeBeforeRoot {
  std::string kind;          // "comment" or "processing instruction"
  long line = 0;             // of the first such node
  std::string root_element;  // the name of the root element after it
};

struct LoadedDocument {
  xml::Document document;
  // Name of the document's first top-level node: the declared root of a document type
  // declaration, "comment" for a leading comment, the root element's tag otherwise; empty
  // when the document has no top-level node.
  std::string root_name;
  // Where the first top-level node is a comment or processing instruction, and nothing but
  // those (or a document type declaration) stands before the root element.
  std::optional<NodeBeforeRoot> before_root;
  // Of the bytes read (see ContentDigest).
  std::string digest;
  // Where the text still did not parse after its repair: the tree holds what the parser
  // recovered, which may end early.
  struct Damage {
    int line = 0;  // of the source, counted from 1: the last line read before the fault
    std::string message;  // the parser's
  };
  std::optional<Damage> damage;
};

// Reads the file at `path` once, whole, and parses those bytes as parse_xml_bytes does: the
// repair and the digest work on what that one read gave, even when the file changes
// meanwhile. The file itself is never changed.
LoadedDocument parse_xml_file(const std::string& path, LineSink& out);

// Parses text in memory, named `name` in messages; when the parser reports anything, removes
// invalid UTF-8 from the lines it names (and, if that is not enough, from every line) and
// parses the repaired text. Writes its progress lines to `out`.
LoadedDocument parse_xml_bytes(const std::string& bytes, const std::string& name, LineSink& out);

}  // namespace quillory
