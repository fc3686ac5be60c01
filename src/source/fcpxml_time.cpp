#include "source/fcpxml_time.h"

#include <charconv>

#include "xml/xml_nodes.h"

namespace quillory {

namespace {

template <typename Number>
std::optional<Number> whole_number(std::string_view text) {
  Number value{};
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return value;
}

}  // namespace

std::optional<RationalTime> read_fcpxml_time(std::string_view text) {
  if (text.empty() || text.back() != 's') return std::nullopt;
  text.remove_suffix(1);
  const std::size_t slash = text.find('/');
  // Bounds far past any edit (a count of 2^40 units, a second of 2^24 units: a million hours
  // at Final Cut Pro's finest scale) keep every sum and conversion of times within 64 bits.
  constexpr long long kLargestCount = 1LL << 40;
  constexpr long long kFinestScale = 1LL << 24;
  const auto count = whole_number<long long>(text.substr(0, slash));
  if (!count || *count > kLargestCount || *count < -kLargestCount) return std::nullopt;
  if (slash == std::string_view::npos) return RationalTime(*count, TimeScale(1, 1));
  const auto per_second = whole_number<long long>(text.substr(slash + 1));
  if (!per_second || *per_second <= 0 || *per_second > kFinestScale) return std::nullopt;
  return RationalTime(*count, TimeScale(*per_second, 1));
}

RationalTime fcpxml_time_attribute(const xmlNode* element, const char* name) {
  const std::optional<std::string> text = xml::attribute(element, name);
  if (text) {
    if (const std::optional<RationalTime> time = read_fcpxml_time(*text)) return *time;
  }
  return RationalTime(0, TimeScale(1, 1));
}

std::string fcpxml_time_text(const RationalTime& time) {
  // value / (units / seconds) seconds = value × seconds / units: counted in 1/units of a
  // second, as Final Cut Pro counts a frame of 29.97 in 1/30000ths.
  const long long count = time.value() * time.scale().seconds();
  const long long per_second = time.scale().units();
  if (count % per_second == 0) return std::to_string(count / per_second) + "s";
  return std::to_string(count) + "/" + std::to_string(per_second) + "s";
}

}  // namespace quillory
