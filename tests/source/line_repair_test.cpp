#include "source/line_repair.h"

#include <gtest/gtest.h>

namespace quillory {
namespace {

TEST(LineRepair, KeepsWellFormedTextAndDropsEveryInvalidUnitWhole) {
  const std::string good = "caf\xC3\xA9 \xE2\x82\xAC 100 \xF0\x9F\x8E\xAC\t\r";
  EXPECT_EQ(repair_line(good), good);
  EXPECT_EQ(repair_line("a\xC0\xAF" "b"), "ab");              // overlong
  EXPECT_EQ(repair_line("a\xED\xA0\x80" "b"), "ab");          // surrogate
  EXPECT_EQ(repair_line("a\xF4\x90\x80\x80" "b"), "ab");      // above U+10FFFF
  EXPECT_EQ(repair_line("a\x80" "b\xFE" "c\x7F" "d"), "abcd");  // lone bytes, DEL
  EXPECT_EQ(repair_line("a\x0B" "b\x01\x1F" "c"), "abc");     // control bytes
  // The unit's length is announced by its first byte, whatever follows: a Latin-1 0xE9 takes
  // the next two bytes with it.
  EXPECT_EQ(repair_line("caf\xE9s au lait"), "cafau lait");
  EXPECT_EQ(repair_line("\xF8\x80\x80\x80\x80" "x"), "x");  // five-byte unit
}

TEST(LineRepair, DropsAnIncompleteLastUnitOnly) {
  EXPECT_EQ(repair_line("abc\xC3"), "abc");
  EXPECT_EQ(repair_line("abc\xE2\x82"), "abc");
  EXPECT_EQ(repair_line(""), "");
}

TEST(LineRepair, ValidityCheckMatchesTheByteTable) {
  for (int b = 0; b < 0x80; ++b) {
    const bool expected = b == 0x09 || b == 0x0A || b == 0x0D || (b >= 0x20 && b <= 0x7E);
    EXPECT_EQ(is_valid_utf8_unit(std::string(1, static_cast<char>(b))), expected) << b;
  }
  EXPECT_FALSE(is_valid_utf8_unit("\xC1\xBF"));
  EXPECT_TRUE(is_valid_utf8_unit("\xC2\x80"));
  EXPECT_FALSE(is_valid_utf8_unit("\xE0\x9F\xBF"));
  EXPECT_TRUE(is_valid_utf8_unit("\xE0\xA0\x80"));
  EXPECT_TRUE(is_valid_utf8_unit("\xED\x9F\xBF"));
  EXPECT_TRUE(is_valid_utf8_unit("\xEE\x80\x80"));
  EXPECT_FALSE(is_valid_utf8_unit("\xF0\x8F\xBF\xBF"));
  EXPECT_TRUE(is_valid_utf8_unit("\xF4\x8F\xBF\xBF"));
  EXPECT_FALSE(is_valid_utf8_unit("\xF5\x80\x80\x80"));
  EXPECT_FALSE(is_valid_utf8_unit("\xC3\x41"));  // continuation byte missing
}

TEST(LineRepair, SplitsAtLineFeedsKeepingCarriageReturnsAndJoinsWithoutSeparator) {
  const auto lines = split_lines("a\r\n\nb\r\nc\n\n\n");
  ASSERT_EQ(lines, (std::vector<std::string>{"a\r", "", "b\r", "c"}));
  EXPECT_EQ(join_lines(lines), "a\rb\rc");
  EXPECT_EQ(split_lines("x"), std::vector<std::string>{"x"});
  EXPECT_TRUE(split_lines("").empty());
}

}  // namespace
}  // namespace quillory
