#pragma once
// The video format of the sequence the titles lie over, as xmeml's <samplecharacteristics>
// states it: the window's preview draws on its frame, and import-safe output writes it as the
// sequence's <format>, which importers size the sequence by.

#include <optional>
#include <string>
#include <vector>

#include "source/clip_record.h"
#include "xml/xml_handles.h"

namespace quillory {

struct FrameSize {
  int width = 1920;
  int height = 1080;
};

struct VideoFormat {
  FrameSize frame;
  std::string anamorphic = "FALSE";
  std::string pixel_aspect_ratio = "square";
  std::string field_dominance = "none";
};

// What a <samplecharacteristics> element states, when it gives a width and a height; what
// else it leaves out keeps the default above.
std::optional<VideoFormat> read_sample_characteristics(const xmlNode* sample);

// The format of the clips' media: that of the first clip whose media file's definition has
// media/video/samplecharacteristics with a width and a height; else the default above.
VideoFormat media_video_format(const std::vector<ClipRecord>& clips);

// The format of `sequence` (none: a new one): its own format/samplecharacteristics where it
// has them, else its clips' media's.
VideoFormat sequence_video_format(const xmlNode* sequence, const std::vector<ClipRecord>& clips);

}  // namespace quillory
