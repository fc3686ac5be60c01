#include "source/content_digest.h"

#include <xxhash.h>

#include <cstdio>
#include <new>

namespace quillory {

ContentDigest::ContentDigest() : state_(XXH3_createState()) {
  if (state_ == nullptr || XXH3_128bits_reset(state_) == XXH_ERROR) {
    XXH3_freeState(state_);
    throw std::bad_alloc();
  }
}

ContentDigest::~ContentDigest() { XXH3_freeState(state_); }

void ContentDigest::add(std::string_view bytes) {
  XXH3_128bits_update(state_, bytes.data(), bytes.size());
}

std::string ContentDigest::text() const {
  const XXH128_hash_t digest = XXH3_128bits_digest(state_);
  char hex[33];
  std::snprintf(hex, sizeof hex, "%016llx%016llx", static_cast<unsigned long long>(digest.high64),
                static_cast<unsigned long long>(digest.low64));
  return hex;
}

}  // namespace quillory
