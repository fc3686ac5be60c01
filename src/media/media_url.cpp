#include "media/media_url.h"

#include <cctype>

namespace quillory::media {
namespace {

int hex_digit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// "%20" becomes a space; a '%' not followed by two hex digits is kept as written.
std::string percent_decoded(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int high = i + 2 < text.size() && text[i] == '%' ? hex_digit(text[i + 1]) : -1;
    const int low = high >= 0 ? hex_digit(text[i + 2]) : -1;
    if (low >= 0) {
      decoded += static_cast<char>(high * 16 + low);
      i += 2;
    } else {
      decoded += text[i];
    }
  }
  return decoded;
}

bool starts_with_ignoring_case(std::string_view text, std::string_view prefix) {
  if (text.size() < prefix.size()) return false;
  for (std::size_t i = 0; i < prefix.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(text[i])) != prefix[i]) return false;
  }
  return true;
}

}  // namespace

std::optional<std::string> path_from_url(std::string_view url) {
  if (!url.empty() && url.front() == '/') return std::string(url);
  if (!starts_with_ignoring_case(url, "file:")) return std::nullopt;
  url.remove_prefix(5);
  if (url.starts_with("//")) {  // an authority: "localhost", a machine's name, or none
    const auto slash = url.find('/', 2);
    if (slash == std::string_view::npos) return std::nullopt;
    url.remove_prefix(slash);
  }
  if (url.empty() || url.front() != '/') return std::nullopt;
  return percent_decoded(url);
}

std::string file_name_of(std::string_view path) {
  const auto last = path.find_last_of("/\\");
  return std::string(last == std::string_view::npos ? path : path.substr(last + 1));
}

}  // namespace quillory::media
