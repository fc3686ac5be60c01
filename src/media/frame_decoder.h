#pragma once
// One picture of a media file, decoded with FFmpeg's libraries: what the preview draws a title
// over. Nothing here knows of any window toolkit.

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "startup/frame_rate.h"

namespace quillory::media {

// A frame counted from the media's first at `rate`, or at the media's own rate without one.
struct FramePosition {
  long long frame = 0;
  std::optional<FrameRate> rate;
};

// 8-bit RGB, rows top first, `width` × 3 bytes each with no padding.
struct RgbImage {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;
};

// Why a file gave no picture, in a few words ("Invalid data found when processing input").
class MediaError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The picture shown at `at`: the last frame that starts no later than it (half a frame's
// leeway for rounding), the first frame when `at` lies before it, the last when after it.
// Throws MediaError when the file cannot be opened, holds no video, or no frame decodes.
RgbImage decode_frame(const std::string& path, const FramePosition& at);

}  // namespace quillory::media
