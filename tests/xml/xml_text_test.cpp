#include "xml/xml_text.h"

#include <gtest/gtest.h>

#include <string_view>

namespace quillory {
namespace {

using namespace std::string_view_literals;

struct Case {
  std::string_view text;
  std::string_view why_not;  // empty: the text may be written
};

TEST(WhyNotXmlText, SaysWhatKeepsATextOutOfAnXmlDocument) {
  const Case cases[] = {
      {"", ""},
      {"Clip: A001 & <b> \"quoted\" ]]>", ""},
      {"tab\tline\nreturn\r", ""},
      {"Caf\xC3\xA9 \xE6\x97\xA5 \xF0\x9F\x8E\xAC \x7F \xC2\x85", ""},
      {"Caf\xE9", "is not UTF-8 (byte 0xE9 at position 4)"},
      {"\xC3\xA9\xE9", "is not UTF-8 (byte 0xE9 at position 2)"},
      {"\xE2\x82", "is not UTF-8 (byte 0xE2 at position 1)"},
      {"\xC0\xAF", "is not UTF-8 (byte 0xC0 at position 1)"},  // overlong '/'
      {"\x9F\xBF", "is not UTF-8 (byte 0x9F at position 1)"},  // stray continuation bytes
      {"\xF4\x90\x80\x80", "is not UTF-8 (byte 0xF4 at position 1)"},  // past U+10FFFF
      {"\xFF", "is not UTF-8 (byte 0xFF at position 1)"},
      {"a\x01", "holds the control character U+0001 at position 2"},
      {"a\0b"sv, "holds the control character U+0000 at position 2"},
      {"\x1B[1m", "holds the control character U+001B at position 1"},
      {"x\xEF\xBF\xBE", "holds U+FFFE, which XML does not allow, at position 2"},
      {"\xED\xA0\x80", "holds U+D800, which XML does not allow, at position 1"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(xml::why_not_xml_text(c.text).value_or(""), c.why_not) << c.text;
  }
}

}  // namespace
}  // namespace quillory
