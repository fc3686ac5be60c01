#pragma once
// A digest of a source document's bytes, taken as they are read: two exports with the same
// file name but other content differ, and a copy of one export anywhere gives the same digest,
// however the bytes arrive (from a file, a pipe or memory, in blocks of any size). It names
// content, it guards nothing: a fast non-cryptographic hash (XXH3, 128 bits) is enough.

#include <memory>
#include <string>
#include <string_view>

struct XXH3_state_s;

namespace quillory {

class ContentDigest {
 public:
  ContentDigest();

  void add(std::string_view bytes);
  // The digest of every byte added, as 32 hexadecimal digits.
  std::string text() const;

 private:
  struct Free {
    void operator()(XXH3_state_s* state) const noexcept;
  };
  std::unique_ptr<XXH3_state_s, Free> state_;
};

}  // namespace quillory
