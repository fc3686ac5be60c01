#include "source/line_repair.h"

#include <gtest/gtest.h>

namespace quillory {
namespace {

TEST(LineRepair, KeepsWellFormedTextAndDropsEveryInvalidUnitWhole) {
  const std::string good = "caf\xC3\xA9 \xE2\x82\xAC 100 \xF0\x9F\x8E\xAC\t\r";
  const std::pair<std::string, std::string> repairs[] = {
      {good, good},
      {"a\xC0\xAF" "b", "ab"},                    // overlong
      {"a\xED\xA0\x80" "b", "ab"},                // surrogate
      {"a\xF4\x90\x80\x80" "b", "ab"},            // above U+10FFFF
      {"a\x80" "b\xFE" "c\x7F" "d", "abcd"},      // lone bytes, DEL
      {"a\x0B" "b\x01\x1F" "c", "abc"},           // control bytes
      {"\xF8\x80\x80\x80\x80" "x", "x"},          // a five-byte unit
      {"abc\xC3", "abc"},                         // an incomplete last unit
      {"abc\xE2\x82", "abc"},
  };
  for (const auto& [line, repaired] : repairs) EXPECT_EQ(repair_line(line), repaired) << line;
}

TEST(LineRepair, AcceptsExactlyTheWellFormedSequencesAtTheirBoundaries) {
  for (int b = 0; b < 0x80; ++b) {
    const bool expected = b == 0x09 || b == 0x0A || b == 0x0D || (b >= 0x20 && b <= 0x7E);
    EXPECT_EQ(is_valid_utf8_unit(std::string(1, static_cast<char>(b))), expected) << b;
  }
  const std::pair<const char*, bool> units[] = {
      {"\xC1\xBF", false}, {"\xC2\x80", true},          {"\xE0\x9F\xBF", false},
      {"\xE0\xA0\x80", true}, {"\xED\x9F\xBF", true},   {"\xEE\x80\x80", true},
      {"\xF0\x8F\xBF\xBF", false}, {"\xF4\x8F\xBF\xBF", true}, {"\xF5\x80\x80\x80", false},
      {"\xC3\x41", false},  // continuation byte missing
  };
  for (const auto& [unit, valid] : units) EXPECT_EQ(is_valid_utf8_unit(unit), valid) << unit;
}

TEST(LineRepair, SplitsAtLineFeedsKeepingCarriageReturnsAndJoinsWithoutSeparator) {
  const auto lines = split_lines("a\r\n\nb\r\nc\n\n\n");
  ASSERT_EQ(lines, (std::vector<std::string>{"a\r", "", "b\r", "c"}));
  EXPECT_EQ(join_lines(lines), "a\rb\rc");
  EXPECT_TRUE(split_lines("").empty());
}

}  // namespace
}  // namespace quillory
