#include "listing.h"

#include <cstdio>
#include <nlohmann/json.hpp>

#include "media/clip_media.h"

namespace quillory::cli {
namespace {

nlohmann::ordered_json iso_date_time(const std::optional<DateTime>& time) {
  if (!time) return nullptr;
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", time->year, time->month,
                time->day, time->hour, time->minute, time->second);
  return text;
}

// A clip whose rate matches no row (tolerant reading only) has none.
nlohmann::ordered_json rate_or_null(const std::string& rate) {
  if (rate.empty()) return nullptr;
  return rate;
}

nlohmann::ordered_json found_media(const ClipRecord& clip, const media::MediaFolder* folder) {
  const auto path = media::locate_media(media::clip_media(clip), folder);
  if (!path) return nullptr;
  return *path;
}

void print_json(const nlohmann::ordered_json& document, std::ostream& out) {
  // Text from a repaired source is valid UTF-8; replacing keeps any other byte from aborting.
  out << document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
}

}  // namespace

void print_listing(const OpenedSource& opened, std::ostream& out) {
  out << "Templates:\n";
  for (const auto& title : opened.templates) out << "  " << title.name << " (" << title.type << ")\n";
  out << "Clips (name, file, reel, rate):\n";
  for (std::size_t i = 0; i < opened.clips.size(); ++i) {
    const ClipRecord& clip = opened.clips[i];
    out << "  " << clip.clip_name << ", " << clip.file_name << ", " << clip.reel << ", "
        << opened.clip_rates[i] << "\n";
  }
  out << "Rates:\n";
  for (const auto& rate : opened.frame_rates) out << "  " << rate << "\n";
  if (opened.sequences.empty()) return;
  out << (opened.format == SourceFormat::Fcpxml
              ? "Projects (name, rate, length in frames, lanes, shots):\n"
              : "Sequences (name, rate, length in frames, video tracks, shots):\n");
  for (const auto& sequence : opened.sequences) {
    out << "  " << sequence.name << ", " << sequence.rate << ", " << sequence.duration.value() << ", "
        << sequence.video_tracks << ", " << sequence.shots << "\n";
  }
}

void print_json_listing(const OpenedSource& opened, std::ostream& out,
                        const std::optional<std::string>& source,
                        const media::MediaFolder* media_folder) {
  nlohmann::ordered_json listing;
  if (source) listing["source"] = *source;
  listing["templates"] = nlohmann::ordered_json::array();
  listing["clips"] = nlohmann::ordered_json::array();
  listing["rates"] = opened.frame_rates;
  for (const auto& title : opened.templates) {
    listing["templates"].push_back({{"name", title.name}, {"type", title.type}});
  }
  for (std::size_t i = 0; i < opened.clips.size(); ++i) {
    const ClipRecord& clip = opened.clips[i];
    listing["clips"].push_back({{"name", clip.clip_name},
                                {"file", clip.file_name},
                                {"reel", clip.reel},
                                {"scene", clip.scene},
                                {"take", clip.shottake},
                                {"timecode", clip.frame_string},
                                {"date", iso_date_time(clip.time)},
                                {"rate", rate_or_null(opened.clip_rates[i])},
                                {"media", found_media(clip, media_folder)}});
  }
  listing["sequences"] = nlohmann::ordered_json::array();
  for (const auto& sequence : opened.sequences) {
    listing["sequences"].push_back({{"name", sequence.name},
                                    {"rate", rate_or_null(sequence.rate)},
                                    {"duration", sequence.duration.value()},
                                    {"video_tracks", sequence.video_tracks},
                                    {"shots", sequence.shots}});
  }
  print_json(listing, out);
}

void print_json_failure(const std::string& source, const std::string& message, std::ostream& out) {
  print_json({{"source", source}, {"error", message}}, out);
}

void print_preview(const std::vector<ClipRecord>& clips, const LineSettings& lines,
                   std::ostream& out) {
  bool first = true;
  for (const auto& clip : clips) {
    const std::string text = preview_title_text(clip, lines);
    out << (first ? "" : "\n") << text;
    if (!text.empty() && text.back() != '\n') out << '\n';
    first = false;
  }
}

}  // namespace quillory::cli
