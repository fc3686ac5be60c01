#include "source/content_digest.h"

#include <xxhash.h>

#include <cstdio>
#include <new>

namespace quillory {

void ContentDigest::Free::operator()(XXH3_state_s* state) const noexcept { XXH3_freeState(state); }

ContentDigest::ContentDigest() : state_(XXH3_createState()) {
  if (!state_ || XXH3_128bits_reset(state_.get()) == XXH_ERROR) throw std::bad_alloc();
}

void ContentDigest::add(std::string_view bytes) {
  XXH3_128bits_update(state_.get(), bytes.data(), bytes.size());
}

std::string ContentDigest::text() const {
  const XXH128_hash_t digest = XXH3_128bits_digest(state_.get());
  char hex[33];
  std::snprintf(hex, sizeof hex, "%016llx%016llx", static_cast<unsigned long long>(digest.high64),
                static_cast<unsigned long long>(digest.low64));
  return hex;
}

}  // namespace quillory
