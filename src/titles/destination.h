#pragma once
// Where a run's document goes: a file, replaced whole once the document is complete, or an
// open descriptor (standard output), written as the document is made.

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

// Hands `write` the descriptor to write the document to. A file is replaced only when `write`
// succeeds. Throws, naming where, when no destination is known or the write fails.
void deliver(const Destination& to, const std::function<bool(int fd)>& write);

}  // namespace quillory
