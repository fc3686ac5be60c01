#include "startup/frame_rates.h"

#include <cctype>
#include <sstream>

#include "xml/xml_nodes.h"

namespace quillory {

std::optional<RateRecord> find_frame_rate(std::string_view ntsc, long long timebase) {
  for (const auto& rate : FRAME_RATES) {
    if (rate.ntsc == ntsc && rate.timebase == timebase) return rate;
  }
  return std::nullopt;
}

std::optional<RateRecord> find_frame_rate(const FrameRate& rate) {
  return find_frame_rate(rate.ntsc_text(), rate.timebase());
}

std::optional<RateRecord> find_frame_rate_loosely(std::string_view ntsc, long long timebase) {
  std::string upper(xml::trim_blanks(ntsc));
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return find_frame_rate(upper, timebase);
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
  text << rate.type << " (timebase " << rate.timebase << ", ntsc " << rate.ntsc << ", fcp_rate ";
  std::visit([&text](auto value) { text << value; }, rate.fcp_rate);
  text << ")";
  return text.str();
}

}  // namespace quillory
