#include "source/date_time.h"

#include <cstdio>

#include "xml/xml_nodes.h"

namespace quillory {
namespace {

bool is_leap_year(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int days_in_month(int year, int month) {
  static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month == 2 && is_leap_year(year) ? 29 : kDays[month - 1];
}

// A cursor over the text that reads fixed-width digit groups and single characters.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool done() const { return pos_ == text_.size(); }
  bool peek(char c) const { return pos_ < text_.size() && text_[pos_] == c; }
  bool peek_digit() const { return pos_ < text_.size() && is_digit(text_[pos_]); }
  bool accept(char c) {
    if (!peek(c)) return false;
    ++pos_;
    return true;
  }
  bool digits(int count, int& value) {
    if (text_.size() - pos_ < static_cast<std::size_t>(count)) return false;
    value = 0;
    for (int i = 0; i < count; ++i) {
      const char c = text_[pos_ + static_cast<std::size_t>(i)];
      if (!is_digit(c)) return false;
      value = value * 10 + (c - '0');
    }
    pos_ += static_cast<std::size_t>(count);
    return true;
  }
  void skip_digits() {
    while (peek_digit()) ++pos_;
  }

 private:
  static bool is_digit(char c) { return c >= '0' && c <= '9'; }
  std::string_view text_;
  std::size_t pos_ = 0;
};

// Z, +HH, +HHMM, +HH:MM (or with a minus); the offset is read only to be checked.
bool read_zone(Reader& in) {
  if (in.accept('Z')) return true;
  if (!in.accept('+') && !in.accept('-')) return false;
  int hours = 0;
  int minutes = 0;
  if (!in.digits(2, hours)) return false;
  if (in.accept(':')) {
    if (!in.digits(2, minutes)) return false;
  } else if (in.peek_digit() && !in.digits(2, minutes)) {
    return false;
  }
  return hours <= 23 && minutes <= 59;
}

}  // namespace

std::optional<DateTime> make_date_time(int year, int month, int day, int hour, int minute,
                                       int second) {
  if (year < 1 || month < 1 || month > 12 || day < 1 || day > days_in_month(year, month) ||
      hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
    return std::nullopt;
  }
  return DateTime{year, month, day, hour, minute, second};
}

std::optional<DateTime> parse_date_time(std::string_view text) {
  Reader in(xml::trim_blanks(text));
  int year = 0;
  int month = 0;
  int day = 0;
  if (!in.digits(4, year)) return std::nullopt;
  const bool extended = in.accept('-');
  if (!in.digits(2, month) || (extended && !in.accept('-')) || !in.digits(2, day)) {
    return std::nullopt;
  }
  int hour = 0;
  int minute = 0;
  int second = 0;
  if (!in.done()) {
    if (!in.accept('T') && !in.accept(' ')) return std::nullopt;
    if (!in.digits(2, hour)) return std::nullopt;
    if (extended ? !in.accept(':') : false) return std::nullopt;
    if (!in.digits(2, minute)) return std::nullopt;
    if (extended ? in.accept(':') : in.peek_digit()) {
      if (!in.digits(2, second)) return std::nullopt;
      if (in.accept('.') || in.accept(',')) {
        if (!in.peek_digit()) return std::nullopt;
        in.skip_digits();
      }
    }
    if (!in.done()) {
      in.accept(' ');
      if (!read_zone(in)) return std::nullopt;
    }
  }
  if (!in.done()) return std::nullopt;
  return make_date_time(year, month, day, hour, minute, second);
}

std::string to_string(const DateTime& time) {
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d UTC", time.year, time.month,
                time.day, time.hour, time.minute, time.second);
  return text;
}

}  // namespace quillory
