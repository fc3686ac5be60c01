#pragma once
// A frame rate as xmeml states it, a whole-number timebase and an NTSC flag, with the exact
// rate it stands for: NTSC rates run at timebase × 1000/1001 frames a second (29.97 for 30).

#include <optional>
#include <string_view>

#include "startup/rational_time.h"

namespace quillory {

class FrameRate {
 public:
  constexpr FrameRate() = default;
  constexpr FrameRate(int timebase, bool ntsc) : timebase_(timebase), ntsc_(ntsc) {}

  constexpr int timebase() const { return timebase_; }
  constexpr bool ntsc() const { return ntsc_; }
  // Frames a second, exactly: 30000/1001 for timebase 30 with NTSC.
  constexpr TimeScale per_second() const {
    return ntsc_ ? TimeScale(timebase_ * 1000LL, 1001) : TimeScale(timebase_, 1);
  }
  // Whether its timecode drops frame numbers to keep to the clock (29.97 and 59.94).
  constexpr bool drop_frame() const { return ntsc_ && timebase_ % 30 == 0 && timebase_ > 0; }

  // A count of `frames` frames at this rate.
  constexpr RationalTime frames(long long count) const { return {count, per_second()}; }

  // The NTSC flag's text as xmeml writes it, and reads it: exactly "TRUE" or "FALSE", or, read
  // loosely as writers other than Final Cut Pro spell it, without surrounding blanks and in
  // any case.
  constexpr std::string_view ntsc_text() const { return ntsc_ ? "TRUE" : "FALSE"; }
  static std::optional<bool> read_ntsc(std::string_view text, bool loosely);

  constexpr bool operator==(const FrameRate&) const = default;

 private:
  int timebase_ = 30;
  bool ntsc_ = true;
};

}  // namespace quillory
