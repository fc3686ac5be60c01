#pragma once
// Recording dates and times as the source writes them: a calendar date and a clock time to the
// second, held as UTC with the source's own digits. No zone conversion is ever applied, and the
// machine's time zone is never consulted.

#include <optional>
#include <string>
#include <string_view>

namespace quillory {

struct DateTime {
  int year = 0;
  int month = 1;   // 1-12
  int day = 1;     // 1-31
  int hour = 0;    // 0-23
  int minute = 0;  // 0-59
  int second = 0;  // 0-59

  friend bool operator==(const DateTime&, const DateTime&) = default;
};

// A date and time from its fields; none when they do not form a valid one.
std::optional<DateTime> make_date_time(int year, int month, int day, int hour, int minute,
                                       int second);

// Reads a date with an optional time of day and zone offset. Accepted forms:
//   2010-03-13                       20100313
//   2010-03-13T14:05:09              2010-03-13 14:05:09       (T or one space)
//   2010-03-13T14:05                 2010-03-13T14:05:09.250   (fraction dropped)
//   ...followed by Z, +01:00, +0100 or +01 (also after one space), which is not applied.
//   20100313T140509                  (the basic form, with the same zone suffixes)
// A value without a time of day reads as midnight. Surrounding blanks are ignored.
std::optional<DateTime> parse_date_time(std::string_view text);

// "2010-03-13 14:05:09 UTC".
std::string to_string(const DateTime& time);

}  // namespace quillory
