#include "source/content_digest.h"

#include <uuid/uuid.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace quillory {
namespace {

constexpr std::size_t kBlock = 1 << 16;

}  // namespace

// libuuid's SHA-1 takes a whole name at once, so the bytes are chained in fixed blocks: each
// block is hashed under the digest of all before it, as a name-based UUID of that block.
ContentDigest::ContentDigest() {
  std::memcpy(state_, *uuid_get_template("oid"), sizeof state_);
  pending_.reserve(kBlock);
}

void ContentDigest::chain(std::string_view block, unsigned char (&state)[16]) const {
  uuid_t next;
  uuid_generate_sha1(next, state, block.data(), block.size());
  std::memcpy(state, next, sizeof state);
}

void ContentDigest::add(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t taken = std::min(kBlock - pending_.size(), bytes.size());
    pending_.append(bytes.substr(0, taken));
    bytes.remove_prefix(taken);
    if (pending_.size() == kBlock) {
      chain(pending_, state_);
      pending_.clear();
    }
  }
}

std::string ContentDigest::text() const {
  unsigned char last[16];
  std::memcpy(last, state_, sizeof last);
  chain(pending_, last);
  char hex[2 * sizeof last + 1];
  for (std::size_t i = 0; i < sizeof last; ++i) std::snprintf(&hex[2 * i], 3, "%02x", last[i]);
  return hex;
}

}  // namespace quillory
