#include "source/parse_xml_file.h"

#include <libxml/parser.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <cstdio>
#include <fstream>
#include <limits>
#include <optional>
#include <memory>
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
// opens, but cannot be read as a file.
Descriptor open_source(const std::string& path, bool& regular) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw std::system_error(errno, std::generic_category(), "quillory: cannot open " + path);
  Descriptor source(fd);
  struct stat status {};
  if (::fstat(fd, &status) == 0 && S_ISDIR(status.st_mode)) {
    throw std::system_error(EISDIR, std::generic_category(), "quillory: cannot read " + path);
  }
  regular = S_ISREG(status.st_mode);
  if (regular) refuse_too_large(static_cast<unsigned long long>(status.st_size), path);
  return source;
}

// All that `fd` reads, for a source that cannot be read twice.
std::string read_all(int fd, const std::string& path) {
  std::string bytes;
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

}  // namespace

std::string read_file_bytes(const std::string& path) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                       &std::fclose);
  if (!file) {
    throw std::system_error(errno, std::generic_category(), "quillory: cannot open " + path);
  }
  std::string bytes;
  // The size is only a hint: reading goes on to the end whatever it says.
  if (std::fseek(file.get(), 0, SEEK_END) == 0) {
    const long size = std::ftell(file.get());
    if (size > 0) bytes.reserve(static_cast<std::size_t>(size));
    std::rewind(file.get());
  }
  char buffer[1 << 16];
  std::size_t count = 0;
  while ((count = std::fread(buffer, 1, sizeof buffer, file.get())) > 0) bytes.append(buffer, count);
  if (std::ferror(file.get())) {
    throw std::system_error(errno, std::generic_category(), "quillory: cannot read " + path);
  }
  return bytes;
}

namespace {

LoadedDocument loaded(xml::Document document) {
  std::string root = root_name_of(document.get());
  auto before_root = node_before_root(document.get());
  return {std::move(document), std::move(root), std::move(before_root), {}};
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
  return loaded(require_document(third, name));
}

}  // namespace

namespace {

// The document of a first parse that found nothing wrong, else of the repaired text, which
// `bytes()` gives only then.
template <typename Bytes>
LoadedDocument checked(xml::ParsedXml& first, const std::string& name, LineSink& out,
                       Bytes bytes) {
  refuse_past_limits(first, name);
  xml::Document document = require_document(first, name);
  if (!first.diagnostics.empty()) return repaired(bytes(), first, name, out);
  out.line("no errors parsing file!");
  return loaded(std::move(document));
}

}  // namespace

LoadedDocument parse_xml_file(const std::string& path, LineSink& out) {
  bool regular = false;
  const Descriptor source = open_source(path, regular);
  if (!regular) return parse_xml_bytes(read_all(source.get(), path), path, out);
  // A well-formed file, the usual case, is parsed as it is read; only a file to repair is
  // read whole.
  ContentDigest digest;
  xml::ParsedXml first = xml::read_xml_fd(source.get(), path, kFirstParseOptions,
                                          [&](std::string_view bytes) { digest.add(bytes); });
  LoadedDocument document = checked(first, path, out, [&] { return read_file_bytes(path); });
  document.digest = digest.text();
  return document;
}

LoadedDocument parse_xml_bytes(const std::string& bytes, const std::string& name, LineSink& out) {
  xml::ParsedXml first = xml::read_xml(bytes, name, kFirstParseOptions);
  LoadedDocument document = checked(first, name, out, [&]() -> const std::string& { return bytes; });
  ContentDigest digest;
  digest.add(bytes);
  document.digest = digest.text();
  return document;
}

}  // namespace quillory
