// libFuzzer target: see entry_points.h.

#include "entry_points.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quillory::fuzz::open(data, size);
  return 0;
}
