#pragma once
// A digest of a source document's bytes, taken as they are read: two exports with the same
// file name but other content differ, and a copy of one export anywhere gives the same digest,
// however the bytes arrive (from a file, a pipe or memory, in blocks of any size).

#include <string>
#include <string_view>

namespace quillory {

class ContentDigest {
 public:
  ContentDigest();
  void add(std::string_view bytes);
  // The digest of every byte added, as 32 hexadecimal digits.
  std::string text() const;

 private:
  void chain(std::string_view block, unsigned char (&state)[16]) const;

  unsigned char state_[16];
  std::string pending_;  // the bytes after the last whole block
};

}  // namespace quillory
