#pragma once
// The frame rates the system knows, as xmeml states them (timebase and NTSC flag).

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "startup/frame_rate.h"

namespace quillory {

struct RateRecord {
  std::string_view type;  // display name
  int timebase;           // whole frames per second, as in <rate><timebase>
  std::string_view ntsc;  // "TRUE" or "FALSE", as in <rate><ntsc>
  std::variant<int, double> fcp_rate;  // nominal rate: a decimal only for the NTSC rows

  constexpr FrameRate frame_rate() const { return {timebase, ntsc == "TRUE"}; }
};

inline constexpr std::array<RateRecord, 8> FRAME_RATES{{
    {"24P (24fps)", 24, "TRUE", 23.976},
    {"Film (24fps)", 24, "FALSE", 24},
    {"PAL (25fps)", 25, "FALSE", 25},
    {"NTSC/HD (29.97fps)", 30, "TRUE", 29.97},
    {"Video/HD (30fps)", 30, "FALSE", 30},
    {"HD (50fps)", 50, "FALSE", 50},
    {"HD (59.94fps)", 60, "TRUE", 59.94},
    {"HD (60fps)", 60, "FALSE", 60},
}};

// The first row whose NTSC text equals `ntsc` byte for byte and whose timebase equals
// `timebase`; none when no row matches.
std::optional<RateRecord> find_frame_rate(std::string_view ntsc, long long timebase);

// The row of `rate`; none when no row has it.
std::optional<RateRecord> find_frame_rate(const FrameRate& rate);

// As find_frame_rate, but the NTSC text is compared without its surrounding blanks and
// ignoring case, so "False" and " true " match: how writers other than Final Cut Pro spell it.
std::optional<RateRecord> find_frame_rate_loosely(std::string_view ntsc, long long timebase);

// The row whose display name is `type`; none when no row has it.
std::optional<RateRecord> find_frame_rate_by_type(std::string_view type);

// The rate a new sequence takes unless the user chooses one: the first of `rates_met` (the
// rates of a source's clips) that the table holds, else NTSC/HD (29.97fps).
RateRecord default_sequence_rate(const std::vector<std::string>& rates_met);

// "24P (24fps) (timebase 24, ntsc TRUE, fcp_rate 23.976)".
std::string describe(const RateRecord& rate);

}  // namespace quillory
