#include "xml/xml_text.h"

#include <libxml/parserInternals.h>
#include <libxml/xmlstring.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

namespace quillory::xml {
namespace {

constexpr int kLongestUtf8 = 4;
constexpr int kLastCodePoint = 0x10FFFF;

// The character that the first bytes of `bytes` encode and how many bytes that took, or
// nothing when they are not UTF-8. libxml2's decoder takes an overlong form (0xC0 0xAF for
// '/') or a stray continuation byte for a character, so the character must also come back
// from libxml2's encoder as the same bytes.
std::optional<std::pair<int, int>> next_character(std::string_view bytes) {
  const auto* start = reinterpret_cast<const unsigned char*>(bytes.data());
  int length = static_cast<int>(std::min<std::size_t>(bytes.size(), kLongestUtf8));
  const int character = xmlGetUTF8Char(start, &length);
  if (character < 0 || character > kLastCodePoint) return std::nullopt;
  std::array<xmlChar, kLongestUtf8> encoded{};
  if (xmlCopyCharMultiByte(encoded.data(), character) != length ||
      std::memcmp(encoded.data(), start, static_cast<std::size_t>(length)) != 0) {
    return std::nullopt;
  }
  return std::pair{character, length};
}

std::string hex(const char* format, unsigned value) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), format, value);
  return text.data();
}

}  // namespace

std::optional<std::string> why_not_xml_text(std::string_view text) {
  std::size_t at = 0;
  for (std::size_t position = 1; at < text.size(); ++position) {
    const std::string where = " at position " + std::to_string(position);
    const auto next = next_character(text.substr(at));
    if (!next) {
      return "is not UTF-8 (byte " + hex("0x%02X", static_cast<unsigned char>(text[at])) +
             where + ")";
    }
    const auto [character, length] = *next;
    if (!IS_CHAR(character)) {
      const std::string code = hex("U+%04X", static_cast<unsigned>(character));
      return character < 0x20 ? "holds the control character " + code + where
                              : "holds " + code + ", which XML does not allow," + where;
    }
    at += static_cast<std::size_t>(length);
  }
  return std::nullopt;
}

}  // namespace quillory::xml
