#pragma once
// Times as values that know what they count. A TimeScale is an exact number of units a second
// (30000/1001 frames at 29.97, 25 at PAL, or 30000 for a time written in 1/30000ths of a
// second); a RationalTime is a whole count of such units; a TimeRange a start and a duration
// on one scale. A time changes scale only through rescaled_to, which rounds to the nearest
// unit of the new scale, halves away from zero, so every conversion rounds the same way. Sums,
// differences and comparisons are exact: times of two scales add on a scale that counts both.

#include <compare>
#include <cstdint>
#include <limits>
#include <stdexcept>

namespace quillory {

// 128-bit arithmetic for the products on the way of a conversion (a GCC and Clang extension).
__extension__ typedef __int128 WideCount;

class TimeScale {
 public:
  constexpr TimeScale() = default;
  // `units` per `seconds` seconds, kept in lowest terms so equal scales compare equal.
  constexpr TimeScale(long long units, long long seconds) : units_(units), seconds_(seconds) {
    if (seconds_ < 0) units_ = -units_, seconds_ = -seconds_;
    const long long divisor = gcd(units_ < 0 ? -units_ : units_, seconds_);
    if (divisor > 1) units_ /= divisor, seconds_ /= divisor;
  }
  constexpr long long units() const { return units_; }
  constexpr long long seconds() const { return seconds_; }
  constexpr double per_second() const {
    return static_cast<double>(units_) / static_cast<double>(seconds_);
  }
  constexpr bool operator==(const TimeScale&) const = default;

  // The coarsest scale on which a whole count of units of either scale is a whole count:
  // 120000 units a second for 24000/1001 and 30000/1001.
  static constexpr TimeScale common(TimeScale a, TimeScale b) {
    return {a.units_ / gcd(a.units_, b.units_) * b.units_, gcd(a.seconds_, b.seconds_)};
  }

 private:
  static constexpr long long gcd(long long a, long long b) {
    while (b != 0) {
      const long long rest = a % b;
      a = b;
      b = rest;
    }
    return a;
  }
  long long units_ = 1;
  long long seconds_ = 1;
};

class RationalTime {
 public:
  constexpr RationalTime() = default;
  constexpr RationalTime(long long value, TimeScale scale) : value_(value), scale_(scale) {}

  constexpr long long value() const { return value_; }
  constexpr TimeScale scale() const { return scale_; }
  constexpr double seconds() const { return static_cast<double>(value_) / scale_.per_second(); }

  // The same time counted on `scale`, to the nearest unit, a half away from zero.
  constexpr RationalTime rescaled_to(TimeScale scale) const {
    if (scale == scale_) return *this;
    // value × (scale units / scale seconds) / (own units / own seconds), in 128 bits so that
    // a long count at a fine scale cannot overflow on the way.
    const WideCount numerator = static_cast<WideCount>(value_) * scale.units() * scale_.seconds();
    const WideCount denominator = static_cast<WideCount>(scale_.units()) * scale.seconds();
    return {narrowed(divide_rounding(numerator, denominator)), scale};
  }

  // On this time's scale when both share it, else on their common scale: never rounded.
  constexpr RationalTime operator+(const RationalTime& other) const {
    if (scale_ == other.scale_) return {narrowed(WideCount(value_) + other.value_), scale_};
    const TimeScale scale = TimeScale::common(scale_, other.scale_);
    return {narrowed(WideCount(rescaled_to(scale).value_) + other.rescaled_to(scale).value_), scale};
  }
  constexpr RationalTime operator-(const RationalTime& other) const {
    if (scale_ == other.scale_) return {narrowed(WideCount(value_) - other.value_), scale_};
    const TimeScale scale = TimeScale::common(scale_, other.scale_);
    return {narrowed(WideCount(rescaled_to(scale).value_) - other.rescaled_to(scale).value_), scale};
  }
  // Ordered by the instants they stand for, whatever their scales.
  constexpr std::strong_ordering operator<=>(const RationalTime& other) const {
    if (scale_ == other.scale_) return value_ <=> other.value_;
    return static_cast<WideCount>(value_) * other.scale_.units() * scale_.seconds() <=>
           static_cast<WideCount>(other.value_) * scale_.units() * other.scale_.seconds();
  }
  constexpr bool operator==(const RationalTime& other) const {
    return (*this <=> other) == std::strong_ordering::equal;
  }

 private:
  // A count that a time holds; a time past what 64 bits count is no time a document means.
  static constexpr long long narrowed(WideCount count) {
    if (count > std::numeric_limits<long long>::max() || count < std::numeric_limits<long long>::min()) {
      throw std::range_error("quillory: a time lies out of range");
    }
    return static_cast<long long>(count);
  }

  // numerator / denominator to the nearest whole number, a half away from zero.
  static constexpr WideCount divide_rounding(WideCount numerator, WideCount denominator) {
    if (denominator < 0) numerator = -numerator, denominator = -denominator;
    if (numerator < 0) return -((-2 * numerator + denominator) / (2 * denominator));
    return (2 * numerator + denominator) / (2 * denominator);
  }

  long long value_ = 0;
  TimeScale scale_;
};

// The scale whose unit lasts `unit` (a frame's duration): 1001/30000 s gives 30000/1001 units a
// second, so that a time rescaled to it counts such frames.
constexpr TimeScale scale_counting(const RationalTime& unit) {
  return {unit.scale().units(), unit.value() * unit.scale().seconds()};
}

struct TimeRange {
  RationalTime start;
  RationalTime duration;

  constexpr RationalTime end() const { return start + duration; }
  constexpr TimeRange rescaled_to(TimeScale scale) const {
    // The end is converted, not the duration, so that ranges butted end to end stay butted.
    const RationalTime first = start.rescaled_to(scale);
    return {first, end().rescaled_to(scale) - first};
  }
  constexpr bool operator==(const TimeRange&) const = default;
};

}  // namespace quillory
