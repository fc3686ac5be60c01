#pragma once
// SMPTE timecode as xmeml writes it: HH:MM:SS:FF, or HH:MM:SS;FF for drop-frame at 29.97 and
// 59.94 frames per second (timebases 30 and 60 with NTSC), where frame numbers 0 and 1 (0 to 3
// at 59.94) are left out at the start of every minute but each tenth.

#include <optional>
#include <string>

namespace quillory {

struct TimecodeFormat {
  int timebase = 30;       // nominal frames per second
  bool drop_frame = false;  // only where the timebase is 30 or 60
  // xmeml counts the hours of a day; FCPXML source times run on past 24 hours.
  bool wrap_at_24_hours = true;
};

// The frame count of `text` ("01:00:00:00", "00:01:00;02"); none when it is not timecode.
std::optional<long long> timecode_frames(const std::string& text, const TimecodeFormat& format);

// The timecode of frame `frame` (from 0; a negative frame counts from 0).
std::string format_timecode(long long frame, const TimecodeFormat& format);

}  // namespace quillory
