#include "media/clip_media.h"

#include <algorithm>
#include <filesystem>

#include "media/media_url.h"
#include "xml/xml_nodes.h"

namespace quillory::media {
namespace {

// The <rate> child of `node` as a position's rate; false when it has none with a timebase.
bool read_rate(const xmlNode* node, FramePosition& position) {
  const xmlNode* rate = node != nullptr ? xml::first_child_element(node, "rate") : nullptr;
  if (rate == nullptr) return false;
  const auto timebase = xml::leading_integer(xml::text_content(xml::first_child_element(rate, "timebase")));
  if (timebase <= 0 || timebase > 1000) return false;
  const std::string ntsc = xml::text_content(xml::first_child_element(rate, "ntsc"));
  position.rate = FrameRate(static_cast<int>(timebase), FrameRate::read_ntsc(ntsc, true).value_or(false));
  return true;
}

}  // namespace

ClipMedia clip_media(const ClipRecord& clip) {
  ClipMedia media;
  media.path = path_from_url(xml::trim_blanks(clip.path_url));
  media.file_name = media.path ? file_name_of(*media.path) : clip.file_name;
  if (media.file_name.empty()) media.file_name = clip.file_name;
  const xmlNode* item = clip.shot || clip.xml == nullptr
                            ? clip.xml
                            : xml::first_element_at(clip.xml, {"media", "video", "track", "clipitem"});
  if (item != nullptr) {
    const auto in = xml::leading_integer(xml::text_content(xml::first_child_element(item, "in")));
    media.first_frame.frame = std::max(0LL, in);  // -1 and none: the media's first frame
  }
  if (!read_rate(item, media.first_frame)) read_rate(clip.xml, media.first_frame);
  return media;
}

std::optional<std::string> locate_media(const ClipMedia& media, const MediaFolder* folder) {
  std::error_code error;
  if (media.path && std::filesystem::is_regular_file(*media.path, error)) return media.path;
  if (folder == nullptr || media.file_name.empty()) return std::nullopt;
  const std::string* found = folder->find(media.file_name);
  return found ? std::optional<std::string>(*found) : std::nullopt;
}

}  // namespace quillory::media
