#pragma once
// How the operations tell the user what they cannot work with: exceptions whose message is meant
// for the user, in the form every host shows as it stands.

#include <new>
#include <stdexcept>
#include <string>

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

}  // namespace quillory
