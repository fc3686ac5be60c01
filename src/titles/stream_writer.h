#pragma once
// Writes an XML document as it is made: its outline (the declaration, the document type and
// the few elements that hold long lists) comes from a small document, and the long lists are
// made, written and freed one child at a time, so the whole never stands in memory. The text
// is what libxml2 writes for the same tree: each child is serialized by libxml2 itself, at its
// level, indented as libxml2 indents.

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include <libxml/xmlIO.h>

#include "xml/xml_handles.h"

namespace quillory {

class StreamWriter {
 public:
  // Writes to the open file descriptor `fd`, which stays open.
  explicit StreamWriter(int fd);
  ~StreamWriter();
  StreamWriter(const StreamWriter&) = delete;
  StreamWriter& operator=(const StreamWriter&) = delete;

  // Writes `doc`. After the children of the i-th element of `expand` (elements of `doc` in any
  // order, none inside another), `fill(i)` adds the rest of that element's children by calling
  // child() once for each.
  void write(xmlDoc* doc, const std::vector<xmlNode*>& expand,
             const std::function<void(std::size_t)>& fill);

  // Writes one child of the element being filled; the caller may free it afterwards.
  void child(xmlNode* node);
  // Writes the text of children of the element being filled, as libxml2 writes them at
  // child_level(): a line break and the indentation before each.
  void raw_child(const std::string& text);
  int child_level() const { return child_level_; }

  // Flushes and closes the output; false when any write failed.
  bool finish();

 private:
  void write_node(xmlNode* node, int level);
  void write_start_tag(const xmlNode* element);
  void raw(const char* text);
  void indent(int level);
  static int write_pending(void* writer, const char* bytes, int length);
  static int close_pending(void* writer);
  bool flush_pending();

  // libxml2 hands its output over in small pieces; they are gathered here and written to the
  // file in large blocks, which saves a system call per few kilobytes.
  int fd_;
  std::string pending_;
  xmlOutputBuffer* out_;
  xmlDoc* doc_ = nullptr;
  std::vector<xmlNode*> expand_;
  std::unordered_set<const xmlNode*> outline_;  // the elements of `expand` and their ancestors
  const std::function<void(std::size_t)>* fill_ = nullptr;
  int child_level_ = 0;
};

}  // namespace quillory
