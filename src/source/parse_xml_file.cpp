#include "source/parse_xml_file.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <limits>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "source/content_digest.h"
#include "source/line_repair.h"
#include "source/user_message.h"
#include "xml/read_xml.h"

namespace quillory {
namespace {

constexpr int kFirstParseOptions = XML_PARSE_RECOVER | XML_PARSE_NOBLANKS;
constexpr int kRepairedParseOptions = XML_PARSE_RECOVER;

// A parse that gives no document at all cannot go on: report the parser's last word on it.
xml::Document require_document(xml::ParsedXml& parsed, const std::string& path) {
  if (!parsed.document) {
    const std::string reason = parsed.diagnostics.empty()
                                   ? path + ": the parser built no document"
                                   : xml::describe(parsed.diagnostics.back(), path);
    throw std::runtime_error("quillory: cannot read " + path + " as XML: " + reason);
  }
  return std::move(parsed.document);
}

// A file descriptor that closes itself.
class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  int get() const { return fd_; }

 private:
  int fd_;
};

// What reading a source of `size` bytes takes: its tree is about ten times the text.
constexpr unsigned long long kTreeBytesPerByte = 10;

// The memory a run may still take: what the system has available, within the process's own
// address-space limit; none when neither is known.
std::optional<unsigned long long> memory_available() {
  std::optional<unsigned long long> available;
  std::ifstream meminfo("/proc/meminfo");
  for (std::string key; meminfo >> key;) {
    unsigned long long kilobytes = 0;
    if (key == "MemAvailable:" && meminfo >> kilobytes) available = kilobytes * 1024;
    meminfo.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  rlimit limit{};
  if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) {
    available = std::min<unsigned long long>(available.value_or(limit.rlim_cur), limit.rlim_cur);
  }
  return available;
}

// A source whose tree would not fit is refused before the system has to stop the process.
void refuse_too_large(unsigned long long size, const std::string& path) {
  const auto available = memory_available();
  if (!available || size * kTreeBytesPerByte <= *available) return;
  const auto megabytes = [](unsigned long long bytes) { return std::to_string(bytes >> 20) + " MB"; };
  throw std::runtime_error("quillory: " + path + " is " + megabytes(size) +
                           "; reading it takes about " + megabytes(size * kTreeBytesPerByte) +
                           " of memory, and " + megabytes(*available) +
                           " is available: free memory, or split the export");
}

// Opens the source for reading; throws with the system's reason, naming the path. A folder
// opens, but cannot be read as a file. `size` is that of a regular file, else 0.
Descriptor open_source(const std::string& path, std::size_t& size) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw std::system_error(errno, std::generic_category(), "quillory: cannot open " + path);
  Descriptor source(fd);
  struct stat status {};
  if (::fstat(fd, &status) == 0 && S_ISDIR(status.st_mode)) {
    throw std::system_error(EISDIR, std::generic_category(), "quillory: cannot read " + path);
  }
  size = S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
  if (size > 0) refuse_too_large(size, path);
  return source;
}

// All that `fd` reads, to its end: the one read of a source, whatever it is (a file that grows
// meanwhile is read as far as it goes; a pipe has no size). `size` is only a hint.
std::string read_all(int fd, const std::string& path, std::size_t size) {
  std::string bytes;
  bytes.reserve(size);
  char buffer[1 << 16];
  for (;;) {
    const ssize_t count = ::read(fd, buffer, sizeof buffer);
    if (count == 0) return bytes;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw std::system_error(errno, std::generic_category(), "quillory: cannot read " + path);
    bytes.append(buffer, static_cast<std::size_t>(count));
  }
}

// Nesting past libxml2's depth limit, or a text past its size limit, stops the parser, and no
// repair of the text can change that: such a file is refused as it stands.
void refuse_past_limits(const xml::ParsedXml& parsed, const std::string& path) {
  for (const auto& diagnostic : parsed.diagnostics) {
    // libxml2 reports a text past its limit as an allocation failure of a "huge text node".
    const bool huge_text = diagnostic.message.find("huge") != std::string::npos;
    if (diagnostic.code == XML_ERR_NO_MEMORY && !huge_text) {
      throw std::runtime_error(out_of_memory_message(path) + " (" +
                               xml::describe(diagnostic, path) + ")");
    }
    if (diagnostic.code == XML_ERR_INTERNAL_ERROR || diagnostic.code == XML_ERR_NO_MEMORY) {
      throw std::runtime_error("quillory: cannot read " + path + ": " +
                               xml::describe(diagnostic, path) +
                               " (elements nested more than 256 deep, or more than 10 MB of "
                               "text in one element, are past what is read)");
    }
  }
}

std::string root_name_of(const xmlDoc* doc) {
  if (doc->children == nullptr || doc->children->name == nullptr) return {};
  return reinterpret_cast<const char*>(doc->children->name);
}

std::optional<NodeBeforeRoot> node_before_root(const xmlDoc* doc) {
  const xmlNode* first = doc->children;
  if (first == nullptr || (first->type != XML_COMMENT_NODE && first->type != XML_PI_NODE)) {
    return std::nullopt;
  }
  const xmlNode* node = first;
  while (node != nullptr && node->type != XML_ELEMENT_NODE) {
    if (node->type != XML_COMMENT_NODE && node->type != XML_PI_NODE && node->type != XML_DTD_NODE) {
      return std::nullopt;
    }
    node = node->next;
  }
  if (node == nullptr) return std::nullopt;
  return NodeBeforeRoot{first->type == XML_COMMENT_NODE ? "comment" : "processing instruction",
                        xmlGetLineNo(first), reinterpret_cast<const char*>(node->name)};
}

LoadedDocument loaded(xml::Document document) {
  LoadedDocument result;
  result.root_name = root_name_of(document.get());
  result.before_root = node_before_root(document.get());
  result.document = std::move(document);
  return result;
}

// Where the parser stood when it first found fault with the repaired text: the line list's
// line that holds the last byte read before it (the good string has no line feeds of its own),
// and the message the first parse gave at or after that line, whose line numbers are the
// source's, else the repaired parse's own.
LoadedDocument::Damage damage_of(const xml::ParsedXml& last, const std::vector<std::string>& lines,
                                 const xml::ParsedXml& first) {
  const xml::Diagnostic& fault = last.diagnostics.front();
  LoadedDocument::Damage damage{static_cast<int>(lines.size()), fault.message};
  if (fault.offset >= 0) {
    std::size_t read = 0;
    const auto before = static_cast<std::size_t>(fault.offset);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      read += lines[i].size();
      if (read >= before) {
        damage.line = static_cast<int>(i) + (before == 0 ? 0 : 1);
        break;
      }
    }
  }
  for (const auto& diagnostic : first.diagnostics) {
    if (diagnostic.line >= damage.line) {
      damage.message = diagnostic.message;
      break;
    }
  }
  return damage;
}

// The text, `first` having found fault with it: the lines it names lose their invalid UTF-8,
// and every line does when that is not enough.
LoadedDocument repaired(const std::string& bytes, const xml::ParsedXml& first,
                        const std::string& name, LineSink& out) {
  out.line(std::to_string(first.diagnostics.size()) + " errors parsing file!!!");
  std::vector<std::string> lines = split_lines(bytes);
  for (const auto& diagnostic : first.diagnostics) {
    out.line("...fixing line " + std::to_string(diagnostic.line));
    // A diagnostic without a line, or past the last line (an empty tail of a truncated file),
    // names nothing that could be repaired.
    if (diagnostic.line >= 1 && static_cast<std::size_t>(diagnostic.line) <= lines.size()) {
      auto& line = lines[static_cast<std::size_t>(diagnostic.line) - 1];
      line = repair_line(line);
    }
  }
  xml::ParsedXml second = xml::read_xml(join_lines(lines), name, kRepairedParseOptions);
  xml::Document document = require_document(second, name);
  if (second.diagnostics.empty()) {
    out.line("no errors parsing good_string!");
    return loaded(std::move(document));
  }
  out.line(std::to_string(second.diagnostics.size()) + " errors parsing good_string!!!");
  for (auto& line : lines) line = repair_line(line);
  xml::ParsedXml third = xml::read_xml(join_lines(lines), name, kRepairedParseOptions);
  LoadedDocument result = loaded(require_document(third, name));
  if (!third.diagnostics.empty()) result.damage = damage_of(third, lines, first);
  return result;
}

}  // namespace

LoadedDocument parse_xml_file(const std::string& path, LineSink& out) {
  std::size_t size = 0;
  const Descriptor source = open_source(path, size);
  return parse_xml_bytes(read_all(source.get(), path, size), path, out);
}

LoadedDocument parse_xml_bytes(const std::string& bytes, const std::string& name, LineSink& out) {
  xml::ParsedXml first = xml::read_xml_in_blocks(bytes, name, kFirstParseOptions);
  refuse_past_limits(first, name);
  xml::Document parsed = require_document(first, name);
  LoadedDocument document;
  if (first.diagnostics.empty()) {
    out.line("no errors parsing file!");
    document = loaded(std::move(parsed));
  } else {
    parsed.reset();  // the repaired text's tree replaces it
    document = repaired(bytes, first, name, out);
  }
  ContentDigest digest;
  digest.add(bytes);
  document.digest = digest.text();
  return document;
}

}  // namespace quillory
