#include "listing.h"

#include <algorithm>

#include "source/xml_nodes.h"
#include "source/xpath_query.h"
#include "startup/frame_rates.h"
#include "titles/compose_title_text.h"

namespace quillory::cli {
namespace {

std::string rate_of(const ClipRecord& clip, xml::XPathQuery& ntsc, xml::XPathQuery& timebase) {
  const std::string flag = xml::text_content(ntsc.first(clip.xml));
  const long long base = xml::leading_integer(xml::text_content(timebase.first(clip.xml)));
  const auto rate = find_frame_rate(flag, base);
  return rate ? std::string(rate->type) : "?";
}

}  // namespace

void print_listing(const ControllerFields& fields, std::ostream& err) {
  err << "Templates:\n";
  for (const auto& title : fields.templates_array) {
    err << "  " << title.name << " (" << title.type << ")\n";
  }
  err << "Clips (name, file, reel, rate):\n";
  xml::XPathQuery ntsc(".//ntsc");
  xml::XPathQuery timebase(".//timebase");
  for (const auto& clip : fields.clips_array) {
    err << "  " << clip.clip_name << ", " << clip.file_name << ", " << clip.reel << ", "
        << rate_of(clip, ntsc, timebase) << "\n";
  }
  err << "Rates:\n";
  for (const auto& rate : fields.frame_rates) err << "  " << rate << "\n";
}

void print_preview(const ControllerFields& fields, const Form& form, std::ostream& err) {
  const LineSettings lines = read_line_settings(form);
  bool first = true;
  for (const auto& clip : fields.clips_array) {
    std::string text = compose_title_text(clip, lines);
    std::replace(text.begin(), text.end(), '\r', '\n');
    err << (first ? "" : "\n") << text;
    if (!text.empty() && text.back() != '\n') err << '\n';
    first = false;
  }
}

}  // namespace quillory::cli
