#pragma once
// The one way the operations report input they cannot work with: an exception whose message
// is meant for the user, in the form every host shows as it stands.

#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillory {

// A name or value from the source as a message shows it: whole when short, else its first 60
// bytes (never a part of a character) and "...", so that a name of many megabytes cannot
// flood the terminal.
inline std::string shown(const std::string& text) {
  constexpr std::size_t kLongest = 60;
  if (text.size() <= kLongest) return text;
  std::size_t cut = kLongest;
  while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
  return text.substr(0, cut) + "...";
}

[[noreturn]] inline void fail(const std::string& message) {
  throw std::runtime_error("quillory: " + message);
}

// What the user can do when a run on `path` runs out of memory.
inline std::string out_of_memory_message(const std::string& path) {
  return "quillory: ran out of memory with " + path + ": free memory, or split the export";
}

// The message a host shows for a failed run on `path`: the failure's own, which names what
// went wrong, except that running out of memory (which names nothing) says what to do.
inline std::string failure_message(const std::exception& error, const std::string& path) {
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return out_of_memory_message(path);
  return error.what();
}

// Input that breaks a rule of the format which tolerant reading replaces by a stated
// assumption. Hosts tell the user that switching tolerant reading on takes it.
class IncompleteInput : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Where the input breaks such a rule: strict reading stops with `error`; tolerant reading
// notes `assumption` in `made` and goes on as the assumption says.
inline void assume_or_fail(bool tolerant, std::vector<std::string>& made,
                           const std::string& error, std::string assumption) {
  if (!tolerant) throw IncompleteInput("quillory: " + error);
  made.push_back(std::move(assumption));
}

}  // namespace quillory
