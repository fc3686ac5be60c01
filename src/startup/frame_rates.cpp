#include "startup/frame_rates.h"

#include <sstream>


namespace quillory {

namespace {

std::optional<RateRecord> find_written(std::string_view ntsc, long long timebase, bool loosely) {
  const std::optional<bool> flag = FrameRate::read_ntsc(ntsc, loosely);
  if (!flag) return std::nullopt;
  for (const auto& row : FRAME_RATES) {
    if (row.rate.ntsc() == *flag && row.rate.timebase() == timebase) return row;
  }
  return std::nullopt;
}

}  // namespace

std::optional<RateRecord> find_frame_rate(std::string_view ntsc, long long timebase) {
  return find_written(ntsc, timebase, false);
}

std::optional<RateRecord> find_frame_rate(const FrameRate& rate) {
  for (const auto& row : FRAME_RATES) {
    if (row.rate == rate) return row;
  }
  return std::nullopt;
}

std::optional<RateRecord> find_frame_rate_loosely(std::string_view ntsc, long long timebase) {
  return find_written(ntsc, timebase, true);
}

std::optional<RateRecord> find_frame_rate_by_type(std::string_view type) {
  for (const auto& rate : FRAME_RATES) {
    if (rate.type == type) return rate;
  }
  return std::nullopt;
}

RateRecord default_sequence_rate(const std::vector<std::string>& rates_met) {
  for (const auto& type : rates_met) {
    if (auto rate = find_frame_rate_by_type(type)) return *rate;
  }
  return *find_frame_rate_by_type("NTSC/HD (29.97fps)");
}

std::string describe(const RateRecord& rate) {
  std::ostringstream text;
  text << rate.type << " (timebase " << rate.rate.timebase() << ", ntsc " << rate.rate.ntsc_text()
       << ", fcp_rate ";
  std::visit([&text](auto value) { text << value; }, rate.fcp_rate);
  text << ")";
  return text.str();
}

}  // namespace quillory
