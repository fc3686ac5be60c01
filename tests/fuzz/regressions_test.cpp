// Every input that once made a fuzz target crash, leak, hang or trip a sanitizer, replayed
// through the same entry points in the normal build: each must now run to its end.

#include <gtest/gtest.h>

#include <filesystem>

#include "entry_points.h"
#include "test_support.h"

namespace quillory {
namespace {

TEST(FuzzRegressions, EveryKeptInputRunsThroughEveryTarget) {
  std::size_t replayed = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QUILLORY_FUZZ_REGRESSIONS)) {
    if (entry.path().extension() == ".md") continue;
    SCOPED_TRACE(entry.path().filename().string());
    const std::string input = test::read_file(entry.path());
    const auto* data = reinterpret_cast<const std::uint8_t*>(input.data());
    fuzz::load(data, input.size());
    fuzz::open(data, input.size());
    fuzz::create(data, input.size());
    ++replayed;
  }
  std::cout << "replayed " << replayed << " kept inputs\n";
}

}  // namespace
}  // namespace quillory
