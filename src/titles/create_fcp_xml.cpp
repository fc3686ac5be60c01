#include "titles/create_fcp_xml.h"

#include <cerrno>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <system_error>
#include <variant>
#include <vector>

#include "titles/compose_title_text.h"
#include "titles/destination.h"
#include "titles/import_safe.h"
#include "titles/item_media.h"
#include "titles/item_timing.h"
#include "titles/lacking_items.h"
#include "titles/node_copies.h"
#include "titles/replace_file.h"
#include "titles/sequence_templates.h"
#include "titles/stream_writer.h"
#include "titles/title_prototype.h"
#include "titles/title_writer.h"
#include "source/get_info_from_clips.h"
#include "source/incomplete_input.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

constexpr std::size_t kAudioTracks = 4;

xmlNode* required_child(xmlNode* parent, const char* name, const std::string& owner) {
  xmlNode* child = xml::first_child_element(parent, name);
  if (child == nullptr) fail(owner + " has no <" + name + ">");
  return child;
}

long long add_frames(long long position, long long length, const std::string& clip) {
  long long end = 0;
  if (__builtin_add_overflow(position, length, &end)) {
    fail(clip + " does not fit in the sequence: its duration " + std::to_string(length) +
         " at frame " + std::to_string(position) + " is out of range");
  }
  return end;
}

// "quillory: warning: clip 3 "A003" (line 40): `what`", as the warnings about assumptions read.
std::string clip_warning(std::size_t index, const ClipRecord& clip, const std::string& what) {
  return "quillory: warning: clip " + std::to_string(index + 1) + " \"" + shown(clip.clip_name) +
         "\" (line " + std::to_string(xmlGetLineNo(clip.xml)) + "): " + what;
}

std::string seconds(const RationalTime& time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f s", time.seconds());
  return text;
}

// The rows of the clip's rate and of the sequence's when they differ; none at the sequence's
// rate, or where either matches no row.
std::optional<std::pair<RateRecord, RateRecord>> other_rate(const std::string& clip_rate,
                                                            const TitleSettings& settings) {
  const auto own = find_frame_rate_by_type(clip_rate);
  const auto sequence = find_frame_rate(settings.rate);
  if (!own || !sequence || own->frame_rate() == sequence->frame_rate()) return std::nullopt;
  return std::pair{*own, *sequence};
}

// A clip of another rate than the sequence's keeps its frame count, and so runs longer or
// shorter on the sequence than it does in its own rate: say how much.
std::string other_rate_warning(const RateRecord& own, const RateRecord& sequence, long long frames) {
  return "its rate is " + std::string(own.type) + ", the sequence's " + std::string(sequence.type) +
         ": its " + std::to_string(frames) + " frames run " +
         seconds(sequence.frame_rate().frames(frames)) + " of its " +
         seconds(own.frame_rate().frames(frames));
}

// Where one clip goes, decided before anything is written.
struct PlacedClip {
  TimeRange place;            // on the sequence, in its frames
  RationalTime media_length;  // of its media, in the clip's own frames
  std::string title_text;
  std::string label;
  xmlNode* video_item = nullptr;  // the source's; none only in tolerant reading
  std::vector<xmlNode*> audio_items;
  // Tolerant reading completes the placed copies: each gets the <in> and <out> it lacks, and
  // `own_file` (the clip's own <file>, when it has one) when it has no <file>.
  bool complete_items = false;
  const xmlNode* own_file = nullptr;
};

// Calls `visit` with every item the clip places, its number among them (0 the video clip item,
// then the audio clip items from 1) and the words that name it in a message.
template <typename Visit>
void for_each_item(const PlacedClip& placed, Visit visit) {
  if (placed.video_item != nullptr) {
    const xmlNode* item = placed.video_item;
    visit(item, 0, placed.label + ": its video clip item " + xml::where(item));
  }
  for (std::size_t k = 0; k < placed.audio_items.size(); ++k) {
    const xmlNode* item = placed.audio_items[k];
    visit(item, k + 1, placed.label + ": its audio clip item " + xml::where(item));
  }
}

// The new sequence: the empty sequence with its name and rate set, and its tracks.
struct Outline {
  xml::Document document;
  xmlNode* sequence = nullptr;
  std::vector<xmlNode*> video_tracks;
  std::vector<xmlNode*> audio_tracks;

  explicit Outline(const TitleSettings& settings) {
    document = readied_empty_sequence();
    sequence = xml::first_element_at(xml::as_node(document.get()), {"xmeml", "sequence"});
    const std::string owner = "the built-in empty sequence";
    if (sequence == nullptr) fail(owner + " has no <sequence>");
    xml::set_text(required_child(sequence, "name", owner), settings.sequence_name);
    xmlNode* rate = required_child(sequence, "rate", owner);
    xml::set_text(required_child(rate, "ntsc", owner), std::string(settings.rate.ntsc_text()));
    xml::set_text(required_child(rate, "timebase", owner), std::to_string(settings.rate.timebase()));
    video_tracks = xml::elements_at(sequence, {"media", "video", "track"});
    audio_tracks = xml::elements_at(sequence, {"media", "audio", "track"});
    if (video_tracks.size() < 2 || audio_tracks.size() < kAudioTracks) {
      fail(owner + " lacks its tracks");
    }
  }

  // Audio tracks up to `count`, shaped like the empty sequence's own: enabled, unlocked,
  // output channels alternating 1, 2.
  void add_audio_tracks(std::size_t count) {
    while (audio_tracks.size() < count) {
      xml::Node track(xmlNewDocNode(document.get(), nullptr, BAD_CAST "track", nullptr));
      if (!track) throw std::bad_alloc();
      const char* channel = audio_tracks.size() % 2 == 0 ? "1" : "2";
      for (const auto& [name, value] : {std::pair{"enabled", "TRUE"}, std::pair{"locked", "FALSE"},
                                        std::pair{"outputchannelindex", channel}}) {
        xmlNewTextChild(track.get(), nullptr, BAD_CAST name, BAD_CAST value);
      }
      audio_tracks.push_back(xmlAddNextSibling(audio_tracks.back(), track.release()));
    }
  }
};

// Decides every clip's place in order, printing the progress lines and stopping where a clip
// or the template lacks something, as placing them one by one would; nothing is written yet.
class Planner {
 public:
  Planner(const TitleSettings& settings, const TitlePrototype& title, Outline& outline,
          const std::vector<std::string>& clip_rates, LineSink& out)
      : settings_(settings), title_(title), outline_(outline), clip_rates_(clip_rates), out_(out) {}

  std::vector<PlacedClip> plan(const std::vector<ClipRecord>& clips) {
    std::vector<PlacedClip> placed;
    placed.reserve(clips.size());
    for (std::size_t i = 0; i < clips.size(); ++i) {
      placed.push_back(place(i, clips[i]));
      out_.progress("placing", i + 1, clips.size());
    }
    return placed;
  }

  RationalTime duration() const { return position_; }
  std::vector<std::vector<std::string>>& assumptions() { return assumptions_; }
  // What placing the clips took as it stood that a user would not expect.
  const std::vector<std::string>& warnings() const { return warnings_; }

 private:
  // One clip: where it goes, and what had to be assumed or added to put it there.
  PlacedClip place(std::size_t index, const ClipRecord& clip) {
    PlacedClip placed = find_items(index, clip);
    std::vector<std::string>& made = assumptions_.emplace_back();
    time_clip(index, clip, placed, made);
    placed.title_text = compose_title_text(clip, settings_.lines);
    fit_tracks(placed, made);
    check_items(clip, placed, made);
    check_title(placed.label, made);
    return placed;
  }

  // The items the clip puts on the sequence: its first video clip item and its audio clip items.
  static PlacedClip find_items(std::size_t index, const ClipRecord& clip) {
    PlacedClip placed;
    placed.label = clip_label(clip.clip_name, clip.xml, index + 1);
    placed.video_item = xml::first_element_at(clip.xml, {"media", "video", "track", "clipitem"});
    placed.audio_items = xml::elements_at(clip.xml, {"media", "audio", "track", "clipitem"});
    return placed;
  }

  // The clip's span on the sequence, from the running position on, with its progress lines.
  void time_clip(std::size_t index, const ClipRecord& clip, PlacedClip& placed,
                 std::vector<std::string>& made) {
    out_.line("Clip " + std::to_string(index + 1) + " at " + std::to_string(position_.value()));
    const xmlNode* first_audio = placed.audio_items.empty() ? nullptr : placed.audio_items.front();
    const long long length = clip_length(clip.xml, placed.video_item, first_audio, placed.label,
                                         settings_.tolerant, made);
    out_.line("  " + clip.clip_name + ", " + clip.file_name + ", " + std::to_string(length));
    const auto rates = index < clip_rates_.size() ? other_rate(clip_rates_[index], settings_)
                                                  : std::nullopt;
    // Import-safe output places a clip of another rate for as long as it runs; otherwise its
    // frame count is taken as the sequence's frames, and a warning says what that does.
    const FrameRate own = rates ? rates->first.frame_rate() : settings_.rate;
    placed.media_length = own.frames(length);
    RationalTime span = settings_.rate.frames(length);
    std::string odd = odd_duration(clip.xml);
    if (rates && settings_.import_safe && length > 0) {
      span = placed.media_length.rescaled_to(settings_.rate.per_second());
    } else if (rates && odd.empty() && length > 0) {
      odd = other_rate_warning(rates->first, rates->second, length);
    }
    const RationalTime start = position_;
    position_ = settings_.rate.frames(add_frames(position_.value(), span.value(), placed.label));
    placed.place = {start, position_ - start};
    if (!odd.empty()) warnings_.push_back(clip_warning(index, clip, odd));
  }

  // A clip without video leaves video track 1 empty; one with more audio clip items than the
  // sequence has audio tracks gets tracks added. Strict reading refuses both.
  void fit_tracks(const PlacedClip& placed, std::vector<std::string>& made) {
    const bool tolerant = settings_.tolerant;
    const std::string& label = placed.label;
    if (placed.video_item == nullptr) {
      assume_or_fail(tolerant, made, label + " has no video clip item (media/video/track/clipitem)",
                     "no video clip item, video track 1 left empty over its span");
    }
    const auto& audio = placed.audio_items;
    const auto& tracks = outline_.audio_tracks;
    if (audio.size() <= tracks.size()) return;
    assume_or_fail(tolerant, made,
                   label + " has " + std::to_string(audio.size()) +
                       " audio clip items; the sequence has 4 audio tracks, so the audio clip "
                       "item " + xml::where(audio[kAudioTracks]) + " has no track to go to",
                   std::to_string(audio.size()) + " audio clip items, audio tracks " +
                       std::to_string(tracks.size() + 1) + " to " + std::to_string(audio.size()) +
                       " added");
    outline_.add_audio_tracks(audio.size());
  }

  // What the placed items lack. Every one needs <start> and <end>, which strict reading refuses
  // to do without. Importers also need an item's <in>, <out> and <file>: strict reading places
  // an item without them as it is, tolerant reading gives the copy those it lacks.
  void check_items(const ClipRecord& clip, PlacedClip& placed,
                   std::vector<std::string>& made) const {
    const bool tolerant = settings_.tolerant;
    placed.complete_items = tolerant;
    placed.own_file = tolerant ? own_file(clip.xml) : nullptr;
    LackingItems untimed, unranged, without_file;
    for_each_item(placed, [&](const xmlNode* item, std::size_t number, const std::string& owner) {
      untimed.add(check_item_timing(item, owner, tolerant), number);
      if (!tolerant) return;
      unranged.add(missing_source_range(item), number);
      if (placed.own_file != nullptr && !has_file(item)) without_file.add("<file>", number);
    });
    untimed.describe(made, "added");
    unranged.describe(made, "added");
    without_file.describe(made, "a copy of the clip's <file> added");
  }

  // The title copied for the clip: what tolerant reading completed in it, or the refusal.
  void check_title(const std::string& label, std::vector<std::string>& made) const {
    if (!title_.completed().empty()) made.push_back(title_.completed());
    title_.check(label);
  }

  const TitleSettings& settings_;
  const TitlePrototype& title_;
  Outline& outline_;
  const std::vector<std::string>& clip_rates_;
  LineSink& out_;
  RationalTime position_{0, settings_.rate.per_second()};  // the end of the last clip placed
  std::vector<std::vector<std::string>> assumptions_;  // per clip placed
  std::vector<std::string> warnings_;
};

// Writes the planned sequence: each track's items are made, written and freed one at a time.
class ItemWriter {
 public:
  ItemWriter(const TitleSettings& settings, const TitlePrototype& title, Outline& outline,
             const std::vector<PlacedClip>& placed, ImportSafeOutput* import_safe,
             LineSink& progress)
      : title_(title), outline_(outline), placed_(placed), import_safe_(import_safe),
        progress_(progress) {
    if (settings.timecode_reader) filter_.emplace();
  }

  // Writes the items of track `index`: video 1, video 2, then the audio tracks in order.
  void fill(StreamWriter& out, std::size_t index) {
    for (std::size_t i = 0; i < placed_.size(); ++i) {
      const PlacedClip& clip = placed_[i];
      if (index == 0 && clip.video_item != nullptr) {
        write_item(out, clip.video_item, clip, true);
      } else if (index == 1) {
        titles_.write(out, clip.place, clip.title_text, i + 1);
        progress_.progress("writing", i + 1, placed_.size());
      } else if (index >= 2 && index - 2 < clip.audio_items.size()) {
        write_item(out, clip.audio_items[index - 2], clip, false);
      }
    }
  }

 private:
  void write_item(StreamWriter& out, const xmlNode* source, const PlacedClip& clip, bool video) {
    const xml::Node item = clean_copy(source, outline_.document.get());
    set_item_timing(item.get(), clip.place);
    if (clip.complete_items) complete(item.get(), clip);
    remove_link_indexes(item.get());
    if (video && filter_) filter_->append_to(item.get());
    if (import_safe_ != nullptr) import_safe_->prepare_item(item.get());
    out.child(item.get());
  }

  // The <in>, <out> and <file> that the placed copy lacks.
  static void complete(xmlNode* item, const PlacedClip& clip) {
    add_source_range(item, clip.media_length);
    if (clip.own_file != nullptr && !has_file(item)) add_file(item, clip.own_file);
  }

  const TitlePrototype& title_;
  Outline& outline_;
  const std::vector<PlacedClip>& placed_;
  ImportSafeOutput* import_safe_;
  LineSink& progress_;  // the titles are most of what is written: they measure the writing
  std::optional<TimecodeReader> filter_;
  TitleWriter titles_{title_, import_safe_};
};

}  // namespace

AssumptionReport create_fcp_xml(const std::vector<TitleTemplate>& templates,
                                const std::vector<ClipRecord>& clips,
                                const TitleSettings& settings, const Destination& to,
                                LineSink& out, const std::vector<std::string>& clip_rates) {
  to.require_known();
  const TitleTemplate& chosen = choose_template(templates, settings.template_name);
  Outline outline(settings);
  const TitlePrototype title(chosen, outline.document.get(), settings.tolerant);
  Planner planner(settings, title, outline, clip_rates, out);
  const std::vector<PlacedClip> placed = planner.plan(clips);

  std::optional<ImportSafeOutput> import_safe;
  if (settings.import_safe) {
    import_safe.emplace(clips, ImportSafeRun{settings.source_digest, settings.sequence_name,
                                             planner.duration()});
    import_safe->prepare_sequence(outline.sequence, xmlDocGetRootElement(outline.document.get()));
  }
  ItemWriter items(settings, title, outline, placed, import_safe ? &*import_safe : nullptr, out);
  std::vector<xmlNode*> tracks = outline.video_tracks;
  tracks.resize(2);
  tracks.insert(tracks.end(), outline.audio_tracks.begin(), outline.audio_tracks.end());
  deliver(to, [&](int fd) {
    StreamWriter writer(fd);
    writer.write(outline.document.get(), tracks,
                 [&](std::size_t track) { items.fill(writer, track); });
    return writer.finish();
  });

  AssumptionReport report = report_assumptions(templates, clips, planner.assumptions());
  report.warnings.insert(report.warnings.begin(), planner.warnings().begin(), planner.warnings().end());
  if (import_safe) {
    report.warnings.insert(report.warnings.begin(), import_safe->warnings().begin(),
                           import_safe->warnings().end());
  }
  return report;
}

}  // namespace quillory
