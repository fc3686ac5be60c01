#include "startup/frame_rate.h"

#include <algorithm>
#include <cctype>

namespace quillory {

std::optional<bool> FrameRate::read_ntsc(std::string_view text, bool loosely) {
  if (loosely) {
    const auto blank = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    while (!text.empty() && blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && blank(text.back())) text.remove_suffix(1);
    const auto same = [text](std::string_view word) {
      return std::equal(text.begin(), text.end(), word.begin(), word.end(), [](char a, char b) {
        return std::toupper(static_cast<unsigned char>(a)) == b;
      });
    };
    if (same("TRUE")) return true;
    if (same("FALSE")) return false;
    return std::nullopt;
  }
  if (text == "TRUE") return true;
  if (text == "FALSE") return false;
  return std::nullopt;
}

}  // namespace quillory
