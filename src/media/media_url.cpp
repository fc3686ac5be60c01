#include "media/media_url.h"

#include <cctype>

#include "xml/xml_nodes.h"

namespace quillory::media {
namespace {

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
  return xml::uri_unescaped(url);
}

std::string file_name_of(std::string_view path) {
  const auto last = path.find_last_of("/\\");
  return std::string(last == std::string_view::npos ? path : path.substr(last + 1));
}

}  // namespace quillory::media
