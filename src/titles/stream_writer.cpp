#include "titles/stream_writer.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <string>

#include <unistd.h>

namespace quillory {

constexpr std::size_t kBlock = 1 << 20;

StreamWriter::StreamWriter(int fd)
    : fd_(fd), out_(xmlOutputBufferCreateIO(&write_pending, &close_pending, this, nullptr)) {
  if (out_ == nullptr) throw std::bad_alloc();
  pending_.reserve(kBlock);
}

int StreamWriter::write_pending(void* writer, const char* bytes, int length) {
  auto& self = *static_cast<StreamWriter*>(writer);
  self.pending_.append(bytes, static_cast<std::size_t>(length));
  if (self.pending_.size() >= kBlock && !self.flush_pending()) return -1;
  return length;
}

int StreamWriter::close_pending(void* writer) {
  return static_cast<StreamWriter*>(writer)->flush_pending() ? 0 : -1;
}

bool StreamWriter::flush_pending() {
  std::size_t done = 0;
  while (done < pending_.size()) {
    const ssize_t written = ::write(fd_, pending_.data() + done, pending_.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    done += static_cast<std::size_t>(written);
  }
  pending_.clear();
  return true;
}

StreamWriter::~StreamWriter() {
  if (out_ != nullptr) xmlOutputBufferClose(out_);
}

void StreamWriter::write(xmlDoc* doc, const std::vector<xmlNode*>& expand,
                         const std::function<void(std::size_t)>& fill) {
  doc_ = doc;
  expand_ = expand;
  fill_ = &fill;
  outline_.clear();
  for (const xmlNode* node : expand) {
    for (; node != nullptr && node->type == XML_ELEMENT_NODE; node = node->parent) {
      outline_.insert(node);
    }
  }
  raw("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
  for (xmlNode* node = doc->children; node != nullptr; node = node->next) {
    write_node(node, 0);
    raw("\n");
  }
}

void StreamWriter::child(xmlNode* node) {
  raw("\n");
  indent(child_level_);
  xmlNodeDumpOutput(out_, doc_, node, child_level_, 1, "UTF-8");
}

void StreamWriter::raw_child(const std::string& text) {
  xmlOutputBufferWrite(out_, static_cast<int>(text.size()), text.c_str());
}

bool StreamWriter::finish() {
  const int closed = xmlOutputBufferClose(out_);
  out_ = nullptr;
  return closed >= 0;
}

void StreamWriter::write_node(xmlNode* node, int level) {
  if (outline_.count(node) == 0) {
    xmlNodeDumpOutput(out_, doc_, node, level, 1, "UTF-8");
    return;
  }
  write_start_tag(node);
  for (xmlNode* child = node->children; child != nullptr; child = child->next) {
    raw("\n");
    indent(level + 1);
    write_node(child, level + 1);
  }
  const auto expanded = std::find(expand_.begin(), expand_.end(), node);
  if (expanded != expand_.end()) {
    child_level_ = level + 1;
    (*fill_)(static_cast<std::size_t>(expanded - expand_.begin()));
  }
  raw("\n");
  indent(level);
  raw("</");
  raw(reinterpret_cast<const char*>(node->name));
  raw(">");
}

void StreamWriter::write_start_tag(const xmlNode* element) {
  raw("<");
  raw(reinterpret_cast<const char*>(element->name));
  // libxml2 writes an attribute node as it writes it inside its element: a space, the name
  // and the value escaped, in double quotes.
  for (xmlAttr* attribute = element->properties; attribute != nullptr;
       attribute = attribute->next) {
    xmlNodeDumpOutput(out_, doc_, reinterpret_cast<xmlNode*>(attribute), 0, 0, "UTF-8");
  }
  raw(">");
}

void StreamWriter::raw(const char* text) { xmlOutputBufferWriteString(out_, text); }

void StreamWriter::indent(int level) {
  for (int i = 0; i < level; ++i) raw("  ");
}

}  // namespace quillory
