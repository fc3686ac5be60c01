#include "titles/compose_title_text.h"

#include <algorithm>
#include <cstdio>

namespace quillory {
namespace {

constexpr char kLineEnd = '\r';

enum class Shows { EmptyLine, Label, Field, Date };

struct Choice {
  std::string_view title;
  Shows shows;
  std::string ClipRecord::*field = nullptr;
  std::string_view date_format;
};

const std::array<Choice, 13>& choices() {
  static const std::array<Choice, 13> table{{
      {CHOICE_TITLES[0], Shows::EmptyLine, nullptr, {}},
      {CHOICE_TITLES[1], Shows::Label, nullptr, {}},
      {CHOICE_TITLES[2], Shows::Field, &ClipRecord::clip_name, {}},
      {CHOICE_TITLES[3], Shows::Field, &ClipRecord::file_name, {}},
      {CHOICE_TITLES[4], Shows::Field, &ClipRecord::reel, {}},
      {CHOICE_TITLES[5], Shows::Field, &ClipRecord::scene, {}},
      {CHOICE_TITLES[6], Shows::Field, &ClipRecord::shottake, {}},
      {CHOICE_TITLES[7], Shows::Field, &ClipRecord::lognote, {}},
      {CHOICE_TITLES[8], Shows::Field, &ClipRecord::frame_string, {}},
      {CHOICE_TITLES[9], Shows::Date, nullptr, "%B %d, %Y, %I:%M %p"},
      {CHOICE_TITLES[10], Shows::Date, nullptr, "%d %B %Y, %I:%M %p"},
      {CHOICE_TITLES[11], Shows::Date, nullptr, "%m/%d/%Y, %I:%M %p"},
      {CHOICE_TITLES[12], Shows::Date, nullptr, "%d/%m/%Y, %I:%M %p"},
  }};
  return table;
}

const Choice* find_choice(const std::optional<std::string>& title) {
  if (!title) return nullptr;
  for (const auto& choice : choices()) {
    if (choice.title == *title) return &choice;
  }
  return nullptr;
}

void append_label(std::string& text, const std::string& label) {
  if (!label.empty()) text += label + " ";
}

void append_line(std::string& text, const LineSetting& line, const ClipRecord& clip) {
  const Choice* choice = find_choice(line.choice);
  if (choice == nullptr) return;
  switch (choice->shows) {
    case Shows::EmptyLine:
      text += kLineEnd;
      break;
    case Shows::Label:
      text += line.label + kLineEnd;
      break;
    case Shows::Field:
      append_label(text, line.label);
      text += clip.*(choice->field) + kLineEnd;
      break;
    case Shows::Date:
      // Without a time the label stays without a line end and runs into the next line.
      append_label(text, line.label);
      if (clip.time) text += format_date_time(*clip.time, choice->date_format) + kLineEnd;
      break;
  }
}

std::string two_digits(int value) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d", value);
  return text;
}

}  // namespace

LineSettings default_line_settings() {
  return {{{"", "Clip Name"},
           {"", "File Name"},
           {"", "Reel Name"},
           {"", "First Frame Timecode"},
           {"", "Date (13 March 2010), Time"}}};
}

std::string compose_title_text(const ClipRecord& clip, const LineSettings& lines) {
  std::string text;
  for (const auto& line : lines) append_line(text, line, clip);
  return text;
}

std::string preview_title_text(const ClipRecord& clip, const LineSettings& lines) {
  std::string text = compose_title_text(clip, lines);
  std::replace(text.begin(), text.end(), kLineEnd, '\n');
  return text;
}

std::string format_date_time(const DateTime& time, std::string_view format) {
  static constexpr std::array<std::string_view, 12> kMonths{
      "January", "February", "March",     "April",   "May",      "June",
      "July",    "August",   "September", "October", "November", "December"};
  std::string text;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 == format.size()) {
      text += format[i];
      continue;
    }
    switch (format[++i]) {
      case 'B': text += kMonths[static_cast<std::size_t>(time.month - 1)]; break;
      case 'd': text += two_digits(time.day); break;
      case 'm': text += two_digits(time.month); break;
      case 'Y': text += std::to_string(time.year); break;
      case 'I': text += two_digits(time.hour % 12 == 0 ? 12 : time.hour % 12); break;
      case 'M': text += two_digits(time.minute); break;
      case 'p': text += time.hour < 12 ? "AM" : "PM"; break;
      case '%': text += '%'; break;
      default: text += '%'; text += format[i]; break;
    }
  }
  return text;
}

}  // namespace quillory
