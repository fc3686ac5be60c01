#include "titles/create_fcp_xml.h"

#include <stdexcept>
#include <vector>

#include "titles/compose_title_text.h"
#include "titles/import_safe.h"
#include "titles/item_timing.h"
#include "titles/node_copies.h"
#include "titles/replace_file.h"
#include "titles/sequence_templates.h"
#include "titles/stream_writer.h"
#include "titles/title_prototype.h"
#include "xml/failure.h"
#include "xml/read_xml.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

constexpr std::size_t kAudioTracks = 4;

std::string clip_label(std::size_t index, const ClipRecord& clip) {
  return "clip " + std::to_string(index + 1) + " \"" + shown(clip.clip_name) + "\" (" +
         xml::where(clip.xml) + ")";
}

xmlNode* required_child(xmlNode* parent, const char* name, const std::string& owner) {
  xmlNode* child = xml::first_child_element(parent, name);
  if (child == nullptr) fail(owner + " has no <" + name + ">");
  return child;
}

const TitleTemplate& choose_template(const std::vector<TitleTemplate>& templates,
                                     const std::optional<std::string>& name) {
  if (templates.empty()) {
    fail("no source document is open: open an xmeml export before creating titles");
  }
  if (name) {
    for (const auto& candidate : templates) {
      if (candidate.name == *name) return candidate;
    }
  }
  return templates.front();
}

// The path of the source document the clips (else the document's own templates) come from.
std::string source_path(const std::vector<TitleTemplate>& templates,
                        const std::vector<ClipRecord>& clips) {
  std::vector<const xmlDoc*> documents;
  for (const auto& clip : clips) documents.push_back(clip.document.get());
  for (std::size_t i = 1; i < templates.size(); ++i) documents.push_back(templates[i].document.get());
  for (const xmlDoc* document : documents) {
    if (document != nullptr && document->URL != nullptr) {
      return reinterpret_cast<const char*>(document->URL);
    }
  }
  return "";
}

long long add_frames(long long position, long long length, const std::string& clip) {
  long long end = 0;
  if (__builtin_add_overflow(position, length, &end)) {
    fail(clip + " does not fit in the sequence: its duration " + std::to_string(length) +
         " at frame " + std::to_string(position) + " is out of range");
  }
  return end;
}

// Where one clip goes, decided before anything is written.
struct PlacedClip {
  std::string start, end, length;
  std::string title_text;
  std::string label;
  xmlNode* video_item = nullptr;  // the source's; none only in tolerant reading
  std::vector<xmlNode*> audio_items;
};

// The new sequence: the empty sequence with its name and rate set, and its tracks.
struct Outline {
  xml::Document document;
  xmlNode* sequence = nullptr;
  std::vector<xmlNode*> video_tracks;
  std::vector<xmlNode*> audio_tracks;

  explicit Outline(const TitleSettings& settings) {
    xml::ParsedXml parsed = xml::read_xml(empty_sequence_xml(), "empty sequence", 0);
    if (!parsed.document || !parsed.diagnostics.empty()) {
      fail("the built-in empty sequence does not parse");
    }
    document = std::move(parsed.document);
    sequence = xml::first_element_at(xml::as_node(document.get()), {"xmeml", "sequence"});
    const std::string owner = "the built-in empty sequence";
    if (sequence == nullptr) fail(owner + " has no <sequence>");
    xml::set_text(required_child(sequence, "name", owner), settings.sequence_name);
    xmlNode* rate = required_child(sequence, "rate", owner);
    xml::set_text(required_child(rate, "ntsc", owner), settings.ntsc);
    xml::set_text(required_child(rate, "timebase", owner), std::to_string(settings.timebase));
    video_tracks = xml::elements_at(sequence, {"media", "video", "track"});
    audio_tracks = xml::elements_at(sequence, {"media", "audio", "track"});
    if (video_tracks.size() < 2 || audio_tracks.size() < kAudioTracks) {
      fail(owner + " lacks its tracks");
    }
    remove_formatting_blanks(xmlDocGetRootElement(document.get()));
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
          LineSink& out)
      : settings_(settings), title_(title), outline_(outline), out_(out) {}

  std::vector<PlacedClip> plan(const std::vector<ClipRecord>& clips) {
    std::vector<PlacedClip> placed;
    placed.reserve(clips.size());
    for (std::size_t i = 0; i < clips.size(); ++i) {
      placed.push_back(place(i, clips[i]));
      out_.progress("placing", i + 1, clips.size());
    }
    return placed;
  }

  long long duration() const { return position_; }
  std::vector<std::vector<std::string>>& assumptions() { return assumptions_; }

 private:
  PlacedClip place(std::size_t index, const ClipRecord& clip) {
    PlacedClip placed;
    placed.label = clip_label(index, clip);
    const std::string& label = placed.label;
    std::vector<std::string>& made = assumptions_.emplace_back();
    const bool tolerant = settings_.tolerant;
    out_.line("Clip " + std::to_string(index + 1) + " at " + std::to_string(position_));
    placed.video_item = xml::first_element_at(clip.xml, {"media", "video", "track", "clipitem"});
    placed.audio_items = xml::elements_at(clip.xml, {"media", "audio", "track", "clipitem"});
    const auto& audio = placed.audio_items;
    const long long length = clip_length(clip.xml, placed.video_item,
                                         audio.empty() ? nullptr : audio.front(), label, tolerant,
                                         made);
    out_.line("  " + clip.clip_name + ", " + clip.file_name + ", " + std::to_string(length));
    placed.start = std::to_string(position_);
    position_ = add_frames(position_, length, label);
    placed.end = std::to_string(position_);
    placed.length = std::to_string(length);
    placed.title_text = compose_title_text(clip, settings_.lines);

    if (placed.video_item == nullptr) {
      assume_or_fail(tolerant, made, label + " has no video clip item (media/video/track/clipitem)",
                     "no video clip item, video track 1 left empty over its span");
    }
    auto& tracks = outline_.audio_tracks;
    if (audio.size() > tracks.size()) {
      assume_or_fail(tolerant, made,
                     label + " has " + std::to_string(audio.size()) +
                         " audio clip items; the sequence has 4 audio tracks, so the audio clip "
                         "item " + xml::where(audio[kAudioTracks]) + " has no track to go to",
                     std::to_string(audio.size()) + " audio clip items, audio tracks " +
                         std::to_string(tracks.size() + 1) + " to " +
                         std::to_string(audio.size()) + " added");
      outline_.add_audio_tracks(audio.size());
    }
    UntimedItems untimed;
    if (placed.video_item != nullptr) {
      untimed.add(check_item_timing(placed.video_item,
                                    label + ": its video clip item " + xml::where(placed.video_item),
                                    tolerant),
                  0);
    }
    for (std::size_t k = 0; k < audio.size(); ++k) {
      untimed.add(check_item_timing(audio[k], label + ": its audio clip item " + xml::where(audio[k]),
                                    tolerant),
                  k + 1);
    }
    untimed.describe(made);
    if (!title_.completed().empty()) made.push_back(title_.completed());
    title_.check(label);
    return placed;
  }

  const TitleSettings& settings_;
  const TitlePrototype& title_;
  Outline& outline_;
  LineSink& out_;
  long long position_ = 0;
  std::vector<std::vector<std::string>> assumptions_;  // per clip placed
};

// Writes the planned sequence: each track's items are made, written and freed one at a time.
class ItemWriter {
 public:
  ItemWriter(const TitleSettings& settings, const TitlePrototype& title, Outline& outline,
             const std::vector<PlacedClip>& placed, ImportSafeOutput* import_safe,
             LineSink& progress)
      : title_(title), outline_(outline), placed_(placed), import_safe_(import_safe),
        progress_(progress) {
    if (settings.timecode_reader) {
      filter_ = xml::read_html_fragment(tcr_filter_xml(), "Timecode Reader");
      remove_formatting_blanks(xml::as_node(filter_.get()));
    }
  }

  // Writes the items of track `index`: video 1, video 2, then the audio tracks in order.
  void fill(StreamWriter& out, std::size_t index) {
    for (std::size_t i = 0; i < placed_.size(); ++i) {
      const PlacedClip& clip = placed_[i];
      if (index == 0 && clip.video_item != nullptr) {
        write_item(out, clip.video_item, clip, true);
      } else if (index == 1) {
        write_title(out, clip, i + 1);
        progress_.progress("writing", i + 1, placed_.size());
      } else if (index >= 2 && index - 2 < clip.audio_items.size()) {
        write_item(out, clip.audio_items[index - 2], clip, false);
      }
    }
  }

 private:
  void write_item(StreamWriter& out, const xmlNode* source, const PlacedClip& clip, bool video) {
    const xml::Node item = clean_copy(source, outline_.document.get());
    set_item_timing(item.get(), clip.start, clip.end);
    remove_link_indexes(item.get());
    if (video && filter_) {
      for (const xmlNode* node = filter_->children; node != nullptr; node = node->next) {
        xmlAddChild(item.get(), clean_copy(node, outline_.document.get()).release());
      }
    }
    if (import_safe_ != nullptr) import_safe_->prepare_item(item.get());
    out.child(item.get());
  }

  // Titles differ only in a few fields, so libxml2 writes the first one and every title is
  // that text with its own fields.
  void write_title(StreamWriter& out, const PlacedClip& clip, std::size_t number) {
    if (!title_text_) {
      title_text_ = title_.serialize(out.child_level(), import_safe_ != nullptr,
                                     [this](xmlNode* title) {
                                       if (import_safe_) import_safe_->prepare_title_template(title);
                                     });
    }
    TitlePrototype::Fields fields{clip.start, clip.end, clip.length, clip.title_text, {}, {}};
    if (import_safe_ != nullptr) {
      fields.id = ImportSafeOutput::title_id(number);
      fields.uuid = import_safe_->title_uuid(number);
      import_safe_->note_title(number);
    }
    out.raw_child(title_text_->join(fields));
  }

  const TitlePrototype& title_;
  Outline& outline_;
  const std::vector<PlacedClip>& placed_;
  ImportSafeOutput* import_safe_;
  LineSink& progress_;  // the titles are most of what is written: they measure the writing
  xml::Document filter_;
  std::optional<TitlePrototype::Text> title_text_;
};

}  // namespace

AssumptionReport create_fcp_xml(const std::vector<TitleTemplate>& templates,
                                const std::vector<ClipRecord>& clips,
                                const TitleSettings& settings,
                                const std::optional<std::string>& output_path, LineSink& out) {
  if (!output_path) {
    fail("no output folder is known: set HOME (or XDG_DATA_HOME to an absolute path) so that "
         "titles can be written to its Ferncroft folder");
  }
  const TitleTemplate& chosen = choose_template(templates, settings.template_name);
  Outline outline(settings);
  const TitlePrototype title(chosen, outline.document.get(), settings.tolerant);
  Planner planner(settings, title, outline, out);
  const std::vector<PlacedClip> placed = planner.plan(clips);

  std::optional<ImportSafeOutput> import_safe;
  if (settings.import_safe) {
    import_safe.emplace(clips, ImportSafeRun{source_path(templates, clips), settings.sequence_name,
                                             planner.duration()});
    import_safe->prepare_sequence(outline.sequence, xmlDocGetRootElement(outline.document.get()));
  }
  ItemWriter items(settings, title, outline, placed, import_safe ? &*import_safe : nullptr, out);
  std::vector<xmlNode*> tracks = outline.video_tracks;
  tracks.resize(2);
  tracks.insert(tracks.end(), outline.audio_tracks.begin(), outline.audio_tracks.end());
  replace_file(*output_path, [&](int fd) {
    StreamWriter writer(fd);
    writer.write(outline.document.get(), tracks,
                 [&](std::size_t track) { items.fill(writer, track); });
    return writer.finish();
  });

  AssumptionReport report = report_assumptions(templates, clips, planner.assumptions());
  if (import_safe) {
    report.warnings.insert(report.warnings.begin(), import_safe->warnings().begin(),
                           import_safe->warnings().end());
  }
  return report;
}

}  // namespace quillory
