#pragma once
// The text of one title: up to five lines of facts about a clip, each line set up on the form
// by a label text and a choice of what to show. Every completed line ends with a carriage
// return; there are no line feeds.

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "source/clip_record.h"
#include "source/date_time.h"

namespace quillory {

// The titles a line's choice menu offers, matched byte for byte. The first is a single space:
// an empty line.
inline constexpr std::array<std::string_view, 13> CHOICE_TITLES{
    " ",
    "Text",
    "Clip Name",
    "File Name",
    "Reel Name",
    "Scene",
    "Shot/Take",
    "Log Note",
    "First Frame Timecode",
    "Date (March 13, 2010), Time",
    "Date (13 March 2010), Time",
    "Date (3/13/2010), Time",
    "Date (13/3/2010), Time",
};

// The setting of one title line as read from the form: its label text and the title of the
// selected choice (none when nothing is selected).
struct LineSetting {
  std::string label;
  std::optional<std::string> choice;

  bool operator==(const LineSetting&) const = default;
};
using LineSettings = std::array<LineSetting, 5>;

// Lines 1 to 5 as a first launch sets them up: no labels; clip name, file name, reel name,
// first-frame timecode, and the date with the day before the month.
LineSettings default_line_settings();

std::string compose_title_text(const ClipRecord& clip, const LineSettings& lines);

// The title text as a person reads it: each carriage return shown as a line feed.
std::string preview_title_text(const ClipRecord& clip, const LineSettings& lines);

// Formats with the strftime conversions %B %d %m %Y %I %M %p, English month names and zero
// padding, from the stored fields alone (no locale, no time zone).
std::string format_date_time(const DateTime& time, std::string_view format);

}  // namespace quillory
