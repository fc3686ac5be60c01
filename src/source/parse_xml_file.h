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
};

// Reads the whole file. Throws with the operating system's reason, naming the path.
std::string read_file_bytes(const std::string& path);

// Parses the file at `path` (a regular file as it is read; anything else, a pipe say, is read
// once into memory); when the parser reports anything, removes invalid UTF-8 from the
// lines it names (and, if that is not enough, from every line) and parses the repaired text.
// Writes its progress lines to `out`. The file itself is never changed.
LoadedDocument parse_xml_file(const std::string& path, LineSink& out);

// The same for text already in memory, named `name` in messages.
LoadedDocument parse_xml_bytes(const std::string& bytes, const std::string& name, LineSink& out);

}  // namespace quillory
