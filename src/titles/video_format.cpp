#include "titles/video_format.h"

#include "xml/xml_nodes.h"

namespace quillory {
namespace {

// The text of the child `name`, without its blanks; `otherwise` when it has none.
std::string child_text(const xmlNode* parent, const char* name, const char* otherwise) {
  const xmlNode* child = xml::first_child_element(parent, name);
  const std::string text(xml::trim_blanks(xml::text_content(child)));
  return text.empty() ? otherwise : text;
}

int child_size(const xmlNode* parent, const char* name) {
  const long long size = xml::leading_integer(xml::text_content(xml::first_child_element(parent, name)));
  return size > 0 && size <= 1 << 20 ? static_cast<int>(size) : 0;
}

}  // namespace

std::optional<VideoFormat> read_sample_characteristics(const xmlNode* sample) {
  if (sample == nullptr) return std::nullopt;
  VideoFormat format;
  format.frame = {child_size(sample, "width"), child_size(sample, "height")};
  if (format.frame.width == 0 || format.frame.height == 0) return std::nullopt;
  format.anamorphic = child_text(sample, "anamorphic", "FALSE");
  format.pixel_aspect_ratio = child_text(sample, "pixelaspectratio", "square");
  format.field_dominance = child_text(sample, "fielddominance", "none");
  return format;
}

VideoFormat media_video_format(const std::vector<ClipRecord>& clips) {
  for (const auto& clip : clips) {
    if (clip.media_file == nullptr) continue;
    const xmlNode* sample =
        xml::first_element_at(clip.media_file, {"media", "video", "samplecharacteristics"});
    if (auto format = read_sample_characteristics(sample)) return *format;
  }
  return {};
}

VideoFormat sequence_video_format(const xmlNode* sequence, const std::vector<ClipRecord>& clips) {
  if (sequence != nullptr) {
    const xmlNode* own =
        xml::first_element_at(sequence, {"media", "video", "format", "samplecharacteristics"});
    if (auto format = read_sample_characteristics(own)) return *format;
  }
  return media_video_format(clips);
}

}  // namespace quillory
