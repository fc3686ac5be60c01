#include "source/sequence_shots.h"

#include <algorithm>
#include <utility>

#include "source/timecode.h"
#include "source/topmost_runs.h"
#include "source/user_message.h"
#include "startup/frame_rates.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

bool inside_a_clip_item(const xmlNode* node) {
  for (const xmlNode* up = node->parent; up != nullptr; up = up->parent) {
    if (xml::is_element(up, "clipitem")) return true;
  }
  return false;
}

// <enabled> reads FALSE: the track or item is switched off. Absent, it is on.
bool switched_off(const xmlNode* element) {
  return xml::trim_blanks(xml::text_content(xml::first_child_element(element, "enabled"))) == "FALSE";
}

// The text of `element`'s first child `name`; "" where either is missing.
std::string child_text(const xmlNode* element, const char* name) {
  return element != nullptr ? xml::text_content(xml::first_child_element(element, name)) : "";
}

long long integer_child(const xmlNode* element, const char* name) {
  return xml::leading_integer(child_text(element, name));
}

// A transition's cut point: where the picture passes from the item before it to the one after.
long long cut_point(const xmlNode* transition) {
  const long long start = integer_child(transition, "start");
  const long long end = integer_child(transition, "end");
  const std::string alignment =
      std::string(xml::trim_blanks(xml::text_content(xml::first_child_element(transition, "alignment"))));
  if (alignment == "start" || alignment == "start-black") return start;
  if (alignment == "end" || alignment == "end-black") return end;
  const long long sum = start + end;
  return sum >= 0 ? sum / 2 : (sum - 1) / 2;
}

bool is_item(const xmlNode* node) {
  return xml::is_element(node, "clipitem") || xml::is_element(node, "transitionitem") || xml::is_element(node, "generatoritem");
}

const xmlNode* item_beside(const xmlNode* item, bool after) {
  for (const xmlNode* node = after ? item->next : item->prev; node != nullptr;
       node = after ? node->next : node->prev) {
    if (is_item(node)) return node;
  }
  return nullptr;
}

// A clip item's span on its track, a bound of -1 taken from the transition beside it; and the
// sequence frame that shows its <in>.
struct Span {
  long long start = 0, end = 0, anchor = 0;
  std::size_t track = 0, order = 0;
  const xmlNode* item = nullptr;
};

std::optional<Span> span_of(const xmlNode* item) {
  Span span;
  span.item = item;
  span.start = integer_child(item, "start");
  span.end = integer_child(item, "end");
  span.anchor = span.start;
  if (span.start == -1) {
    const xmlNode* before = item_beside(item, false);
    if (!xml::is_element(before, "transitionitem")) return std::nullopt;
    span.start = cut_point(before);
    span.anchor = integer_child(before, "start");
  }
  if (span.end == -1) {
    const xmlNode* after = item_beside(item, true);
    if (!xml::is_element(after, "transitionitem")) return std::nullopt;
    span.end = cut_point(after);
  }
  if (span.start >= span.end) return std::nullopt;
  return span;
}

// Premiere Pro's generated media (slugs, mattes, titles, graphics) has a <mediaSource>.
bool generated_media(const xmlNode* item, const DocumentIndex& index) {
  const xmlNode* file = xml::first_child_element(item, "file");
  if (file == nullptr) return false;
  if (file->children == nullptr) {
    const auto id = xml::attribute(file, "id");
    file = id ? index.file(*id) : nullptr;
  }
  return file != nullptr && xml::first_descendant(file, "mediaSource") != nullptr;
}

bool can_be_seen(const xmlNode* item, const DocumentIndex& index) {
  return xml::is_element(item, "clipitem") && !switched_off(item) && !generated_media(item, index);
}

std::vector<Span> visible_spans(const xmlNode* sequence, const DocumentIndex& index) {
  std::vector<Span> spans;
  const auto tracks = xml::elements_at(sequence, {"media", "video", "track"});
  std::size_t order = 0;
  for (std::size_t track = 0; track < tracks.size(); ++track) {
    if (switched_off(tracks[track])) continue;
    for (const xmlNode* item = tracks[track]->children; item != nullptr; item = item->next) {
      if (!can_be_seen(item, index)) continue;
      if (auto span = span_of(item)) {
        span->track = track;
        span->order = order++;
        spans.push_back(*span);
      }
    }
  }
  return spans;
}

// The spans' pictures stacked by track (then by document order): `shot` gets each run of
// frames over which one span is the picture seen.
template <typename Shot>
void sweep(const std::vector<Span>& spans, Shot shot) {
  std::vector<StackedPicture> pictures;
  pictures.reserve(spans.size());
  for (const Span& span : spans) {
    pictures.push_back({span.start, span.end, static_cast<long long>(span.track), span.order});
  }
  topmost_runs(pictures, [&](std::size_t i, long long first, long long end) { shot(spans[i], first, end); });
}

std::string item_name(const xmlNode* item, const DocumentIndex& index) {
  if (const xmlNode* nested = xml::first_child_element(item, "sequence")) {
    if (const xmlNode* name = xml::first_child_element(nested, "name")) return xml::text_content(name);
    const auto id = xml::attribute(nested, "id");
    const std::string* found = id ? index.sequence_name(*id) : nullptr;
    return found != nullptr ? *found : "";
  }
  return child_text(item, "name");
}

// The item's logging, else that of the master clip it comes from.
void read_logging(const xmlNode* item, const DocumentIndex& index, ClipRecord& record) {
  const xmlNode* logging = xml::first_child_element(item, "logginginfo");
  if (logging == nullptr) {
    const auto id = xml::text_content(xml::first_child_element(item, "masterclipid"));
    const xmlNode* master = id.empty() ? nullptr : index.master_clip(id);
    logging = master != nullptr ? xml::first_child_element(master, "logginginfo") : nullptr;
  }
  record.scene = child_text(logging, "scene");
  record.shottake = child_text(logging, "shottake");
  record.lognote = child_text(logging, "lognote");
}

// A rate as an element's <rate> writes it, the NTSC flag read loosely; `fallback` without a
// timebase.
FrameRate rate_of(const xmlNode* element, const FrameRate& fallback) {
  const xmlNode* rate = xml::first_child_element(element, "rate");
  const long long timebase = integer_child(rate, "timebase");
  if (timebase <= 0) return fallback;
  return FrameRate(static_cast<int>(timebase),
                   FrameRate::read_ntsc(child_text(rate, "ntsc"), true).value_or(false));
}

// The source timecode of the shot's first frame: the file's first frame, plus the item's
// <in>, plus how far into the item the shot starts, counted in the item's own rate.
std::string first_frame_timecode(const Span& span, long long shot_start, const xmlNode* file,
                                 const FrameRate& sequence_rate) {
  const xmlNode* timecode = xml::first_child_element(file, "timecode");
  if (timecode == nullptr) return "";
  const xmlNode* rate = xml::first_child_element(timecode, "rate");
  TimecodeFormat format;
  format.timebase = static_cast<int>(integer_child(rate, "timebase"));
  if (format.timebase <= 0) format.timebase = sequence_rate.timebase();
  if (format.timebase <= 0) return "";
  format.drop_frame = xml::trim_blanks(child_text(timecode, "displayformat")) == "DF" &&
                      xml::trim_blanks(child_text(rate, "ntsc")) == "TRUE";
  std::optional<long long> first;
  if (xml::first_child_element(timecode, "frame") != nullptr) {
    first = integer_child(timecode, "frame");
  } else {
    first = timecode_frames(child_text(timecode, "string"), format);
  }
  if (!first) return "";
  const FrameRate item_rate = rate_of(span.item, sequence_rate);
  long long offset = shot_start - span.anchor;
  if (sequence_rate.timebase() > 0) {
    offset = sequence_rate.frames(offset).rescaled_to(item_rate.per_second()).value();
  }
  return format_timecode(*first + integer_child(span.item, "in") + offset, format);
}

const xmlNode* item_file(const xmlNode* item, const DocumentIndex& index) {
  const xmlNode* file = xml::first_child_element(item, "file");
  if (file == nullptr || file->children != nullptr) return file;
  const auto id = xml::attribute(file, "id");
  return id ? index.file(*id) : nullptr;
}

ClipRecord shot_record(const Span& span, long long start, long long end,
                       const SequenceSummary& sequence, const DocumentIndex& index,
                       const Catalogue& catalogue, const xml::SharedDocument& doc) {
  ClipRecord record;
  record.clip_name = item_name(span.item, index);
  const xmlNode* reference = xml::first_child_element(span.item, "file");
  if (reference != nullptr && xml::first_child_element(span.item, "sequence") == nullptr) {
    if (const MediaFileRecord* media = catalogue.find(xml::attribute(reference, "id"))) {
      record.file_name = media->name;
      record.reel = media->reel;
      record.time = media->time;
      record.media_file = media->xml;
      record.path_url = media->path_url;
    }
    if (const xmlNode* file = item_file(span.item, index)) {
      record.frame_string = first_frame_timecode(span, start, file, sequence.frame_rate);
    }
  }
  read_logging(span.item, index, record);
  record.xml = const_cast<xmlNode*>(span.item);
  record.document = doc;
  const FrameRate rate = sequence.frame_rate;
  record.shot = ShotPlace{{rate.frames(start), rate.frames(end - start)}, record.xml};
  return record;
}

}  // namespace

DocumentIndex::DocumentIndex(xmlDoc* doc) {
  xml::walk_elements(xml::as_node(doc), [this](xmlNode* element) {
    if (xml::is_element(element, "sequence")) {
      if (!inside_a_clip_item(element)) top_level_.push_back(element);
      const xmlNode* name = xml::first_child_element(element, "name");
      const auto id = xml::attribute(element, "id");
      if (id && name != nullptr) sequence_names_.emplace(*id, xml::text_content(name));
    } else if (xml::is_element(element, "file") && element->children != nullptr) {
      if (const auto id = xml::attribute(element, "id")) files_.emplace(*id, element);
    } else if (xml::is_element(element, "clip")) {
      if (const auto id = xml::attribute(element, "id")) master_clips_.emplace(*id, element);
    }
  });
}

const xmlNode* DocumentIndex::file(const std::string& id) const {
  const auto found = files_.find(id);
  return found == files_.end() ? nullptr : found->second;
}

const std::string* DocumentIndex::sequence_name(const std::string& id) const {
  const auto found = sequence_names_.find(id);
  return found == sequence_names_.end() ? nullptr : &found->second;
}

const xmlNode* DocumentIndex::master_clip(const std::string& id) const {
  const auto found = master_clips_.find(id);
  return found == master_clips_.end() ? nullptr : found->second;
}

std::vector<SequenceSummary> summarize_sequences(const DocumentIndex& index, bool tolerant) {
  std::vector<SequenceSummary> summaries;
  for (xmlNode* sequence : index.top_level_sequences()) {
    SequenceSummary summary;
    summary.element = sequence;
    const xmlNode* name = xml::first_child_element(sequence, "name");
    summary.name = name != nullptr ? xml::text_content(name)
                                   : "Sequence " + std::to_string(summaries.size() + 1);
    const xmlNode* rate = xml::first_child_element(sequence, "rate");
    const std::string ntsc = child_text(rate, "ntsc");
    const long long timebase = integer_child(rate, "timebase");
    const auto row = tolerant ? find_frame_rate_loosely(ntsc, timebase) : find_frame_rate(ntsc, timebase);
    if (row) summary.rate = std::string(row->type);
    summary.frame_rate = FrameRate(static_cast<int>(timebase), FrameRate::read_ntsc(ntsc, true).value_or(false));
    summary.written_rate = "ntsc \"" + shown(ntsc) + "\" and timebase " + std::to_string(timebase);
    summary.duration = summary.frame_rate.frames(integer_child(sequence, "duration"));
    summary.video_tracks = xml::elements_at(sequence, {"media", "video", "track"}).size();
    summary.shots = count_shots(sequence, index);
    summaries.push_back(std::move(summary));
  }
  return summaries;
}

std::size_t count_shots(const xmlNode* sequence, const DocumentIndex& index) {
  std::size_t shots = 0;
  sweep(visible_spans(sequence, index), [&](const Span&, long long, long long) { ++shots; });
  return shots;
}

std::vector<ClipRecord> read_shots(const SequenceSummary& sequence, const DocumentIndex& index,
                                   const Catalogue& catalogue, const xml::SharedDocument& doc) {
  std::vector<ClipRecord> records;
  sweep(visible_spans(sequence.element, index), [&](const Span& span, long long start, long long end) {
    records.push_back(shot_record(span, start, end, sequence, index, catalogue, doc));
  });
  return records;
}

}  // namespace quillory
