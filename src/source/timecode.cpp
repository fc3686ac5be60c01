#include "source/timecode.h"

#include <climits>
#include <cstdio>

namespace quillory {
namespace {

// Frames dropped at the start of each minute but every tenth: 2 at 29.97, 4 at 59.94.
long long dropped_per_minute(const TimecodeFormat& format) {
  return format.drop_frame && format.timebase % 30 == 0 ? format.timebase / 15 : 0;
}

}  // namespace

std::optional<long long> timecode_frames(const std::string& text, const TimecodeFormat& format) {
  int hours = 0, minutes = 0, seconds = 0, frames = 0;
  char separator = 0;
  if (std::sscanf(text.c_str(), "%d:%d:%d%c%d", &hours, &minutes, &seconds, &separator,
                  &frames) != 5 ||
      format.timebase <= 0) {
    return std::nullopt;
  }
  const long long drop = dropped_per_minute(format);
  const long long total_minutes = 60LL * hours + minutes;
  const long long nominal =
      ((total_minutes * 60 + seconds) * format.timebase) + frames;
  return nominal - drop * (total_minutes - total_minutes / 10);
}

std::string format_timecode(long long frame, const TimecodeFormat& format) {
  const long long base = format.timebase > 0 ? format.timebase : 30;
  const long long drop = dropped_per_minute(format);
  if (frame < 0) frame = 0;
  if (drop > 0) {
    // Put back the frame numbers that drop-frame timecode leaves out.
    const long long per_ten_minutes = base * 600 - drop * 9;
    const long long per_minute = base * 60 - drop;
    const long long tens = frame / per_ten_minutes;
    const long long rest = frame % per_ten_minutes;
    frame += drop * 9 * tens + (rest > drop ? drop * ((rest - drop) / per_minute) : 0);
  }
  const long long frames = frame % base;
  const long long seconds = frame / base % 60;
  const long long minutes = frame / (base * 60) % 60;
  const long long hours = frame / (base * 3600) % (format.wrap_at_24_hours ? 24 : LLONG_MAX);
  char text[80];  // hours run past 24 in FCPXML source times
  std::snprintf(text, sizeof text, "%02lld:%02lld:%02lld%c%02lld", hours, minutes, seconds,
                drop > 0 ? ';' : ':', frames);
  return text;
}

}  // namespace quillory
