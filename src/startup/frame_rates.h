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
  FrameRate rate;
  std::variant<int, double> fcp_rate;  // nominal rate: a decimal only for the NTSC rows

  constexpr FrameRate frame_rate() const { return rate; }
};

inline constexpr std::array<RateRecord, 8> FRAME_RATES{{
    {"24P (24fps)", {24, true}, 23.976},
    {"Film (24fps)", {24, false}, 24},
    {"PAL (25fps)", {25, false}, 25},
    {"NTSC/HD (29.97fps)", {30, true}, 29.97},
    {"Video/HD (30fps)", {30, false}, 30},
    {"HD (50fps)", {50, false}, 50},
    {"HD (59.94fps)", {60, true}, 59.94},
    {"HD (60fps)", {60, false}, 60},
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
