#pragma once
// Where a run's document goes: a file, replaced whole once the document is complete, or a
// stream (an open descriptor such as standard output, a device, a pipe), written into as the
// document is made.

#include <functional>
#include <optional>
#include <string>

namespace quillory {

struct Destination {
  Destination(std::optional<std::string> file) : path(std::move(file)) {}  // NOLINT: a path is a destination
  Destination(const std::string& file) : path(file) {}                    // NOLINT
  Destination(const char* file) : path(file) {}                           // NOLINT
  static Destination descriptor(int fd) {
    Destination to{std::nullopt};
    to.fd = fd;
    return to;
  }

  // Throws, saying what to do, when neither a path nor a descriptor is known.
  void require_known() const;

  std::optional<std::string> path;  // none: no output folder is known
  int fd = -1;
};

// How a document reaches a path.
enum class Delivery {
  Replacement,  // a regular file, a symbolic link to one, or no file yet: replaced whole
  Stream,       // a character device, a FIFO or a socket: written into, never renamed over
};

// How a document reaches `path`. Throws, naming it, when it is something no document can go to
// (a directory, a block device): a host calls this before it reads the source.
Delivery delivery_to(const std::string& path);

// Whether `path` names the very stream open as `fd` (/dev/stdout, /dev/fd/1, the terminal or
// pipe it is); never when that is a regular file.
bool names_stream(const std::string& path, int fd);

// Hands `write` the descriptor to write the document to. A file is replaced only when `write`
// succeeds. Throws, naming where, when no destination is known or the write fails.
void deliver(const Destination& to, const std::function<bool(int fd)>& write);

}  // namespace quillory
