#include "source/fcpxml_reader.h"

#include <cmath>
#include <unordered_set>

#include "source/fcpxml_clip_facts.h"
#include "source/fcpxml_shots.h"
#include "source/fcpxml_time.h"
#include "source/incomplete_input.h"
#include "startup/frame_rates.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

std::string versions_read() {
  std::string text;
  for (std::string_view version : k_fcpxml_versions) {
    text += (text.empty() ? "" : ", ") + std::string(version);
  }
  return text;
}

std::string frame_durations_read() {
  std::string text;
  for (const RateRecord& row : FRAME_RATES) {
    text += (text.empty() ? "" : ", ") + fcpxml_time_text(row.frame_rate().frames(1));
  }
  return text;
}

std::string document_path(const xmlDoc* doc) {
  return doc->URL != nullptr ? reinterpret_cast<const char*>(doc->URL) : "the source";
}

// Each title of the document by name, the first of a name, after the built-in one.
void read_templates(const xmlNode* root, const xml::SharedDocument& doc, OpenedSource& opened) {
  opened.templates = {fcpxml_default_template()};
  std::unordered_set<std::string> names;
  for (xmlNode* title : xml::all_descendants(root, "title")) {
    const std::string name = xml::attribute(title, "name").value_or("");
    if (name.empty() || !names.insert(name).second) continue;
    opened.templates.push_back(TitleTemplate{name, kFcpxmlTitleType, title, doc, {}});
  }
}

// The catalogue lines of every asset with a picture, as the xmeml catalogue prints its files':
// FCPXML keeps reels on clips, so the reel is "".
void print_assets(const xmlNode* root, LineSink& out) {
  const xmlNode* resources = xml::first_child_element(root, "resources");
  if (resources == nullptr) return;
  for (const xmlNode* asset : xml::elements_at(resources, {"asset"})) {
    if (!asset_has_video(asset)) continue;
    const std::optional<std::string> id = xml::attribute(asset, "id");
    std::optional<DateTime> recorded;
    for (const xmlNode* md : xml::elements_at(asset, {"metadata", "md"})) {
      if (xml::attribute(md, "key") == "com.apple.proapps.studio.metadataContentCreated") {
        recorded = parse_date_time(xml::attribute(md, "value").value_or(""));
        break;
      }
    }
    out.line(id ? *id : "(no id)");
    out.line("\"\"");
    out.line(recorded ? to_string(*recorded) : "(no time)");
    out.line("----------");
  }
}

class EventClipReader {
 public:
  EventClipReader(const FcpxmlResources& resources, const xml::SharedDocument& doc, bool tolerant,
                  OpenedSource& opened, LineSink& out)
      : resources_(resources), doc_(doc), tolerant_(tolerant), opened_(opened), out_(out) {}

  void read(xmlNode* clip) {
    ClipRecord record = fcpxml_clip_record(clip, first_frame(clip), resources_);
    record.document = doc_;
    if (fcpxml_retimed(clip)) {
      opened_.warnings.push_back("quillory: warning: " +
                                 clip_label(record.clip_name, clip, opened_.clips.size() + 1) +
                                 " is retimed; its timecode is read as if it were not");
    }
    opened_.clips.push_back(std::move(record));
    read_rate(clip, opened_.clips.back());
  }

 private:
  // A clip that shows no picture (a sound file) offers no rate and says nothing of one.
  void read_rate(const xmlNode* clip, ClipRecord& record) {
    const xmlNode* media = fcpxml_media_point(clip, first_frame(clip), resources_).media_item;
    if (!fcpxml_shows_picture(clip, media, resources_)) {
      opened_.clip_rates.emplace_back();
      return;
    }
    const xmlNode* format = fcpxml_clip_format(clip, media, resources_);
    const auto frame_duration =
        resources_.frame_duration(xml::attribute(format, "id").value_or(""));
    const auto row = frame_duration ? find_frame_rate_by_duration(*frame_duration) : std::nullopt;
    if (row) {
      out_.line("clip " + record.clip_name + ": " + describe(*row));
      opened_.clip_rates.emplace_back(row->type);
      opened_.frame_rates.emplace_back(row->type);
      return;
    }
    const std::string duration = frame_duration ? "frame duration " + fcpxml_time_text(*frame_duration)
                                                : "no frame duration";
    out_.line("clip " + record.clip_name + ": no frame rate matches " + duration);
    opened_.clip_rates.emplace_back();
    assume_or_fail(tolerant_, record.assumptions,
                   clip_label(record.clip_name, clip) + ": no frame rate matches its " + duration +
                       (format != nullptr ? " (" + xml::where(format) + ")" : "") +
                       "; frame durations read: " + frame_durations_read(),
                   "no frame rate matches its " + duration + ", frame rate left unknown");
  }

  // An event clip's own first frame: its start.
  static RationalTime first_frame(const xmlNode* clip) {
    return fcpxml_time_attribute(fcpxml_audition_pick(clip), "start");
  }

  const FcpxmlResources& resources_;
  const xml::SharedDocument& doc_;
  bool tolerant_;
  OpenedSource& opened_;
  LineSink& out_;
};

void remove_duplicates(std::vector<std::string>& names) {
  std::unordered_set<std::string> seen;
  std::vector<std::string> kept;
  for (auto& name : names) {
    if (seen.insert(name).second) kept.push_back(std::move(name));
  }
  names = std::move(kept);
}

// A project's clips are its shots: each its clip item's facts at the shot's first frame, at the
// project's rate. A frame duration no rate row holds stops the open unless reading tolerantly.
void read_project_shots(const SequenceSummary& project, const FcpxmlResources& resources,
                        bool tolerant, OpenedSource& opened) {
  const xmlNode* sequence = xml::first_child_element(project.element, "sequence");
  if (sequence == nullptr) {
    fail("project \"" + shown(project.name) + "\" (" + xml::where(project.element) +
         ") has no <sequence>: it holds no edit to title");
  }
  const auto frame_duration =
      resources.frame_duration(xml::attribute(sequence, "format").value_or(""));
  opened.sequence = project.element;
  if (!project.rate.empty()) {
    opened.sequence_rate = project.frame_rate;
    opened.frame_rates = {project.rate};
  } else {
    const std::string duration = frame_duration ? "frame duration " + fcpxml_time_text(*frame_duration)
                                                : "no frame duration";
    const std::string what = "project \"" + shown(project.name) + "\" (" +
                             xml::where(project.element) + "): no frame rate matches its " + duration;
    if (!tolerant) throw IncompleteInput("quillory: " + what + "; frame durations read: " + frame_durations_read());
    opened.warnings.push_back("quillory: warning: " + what + ", kept as written");
    if (frame_duration) {
      const TimeScale frames = scale_counting(*frame_duration);
      opened.sequence_rate = FrameRate(static_cast<int>(std::llround(frames.per_second())), false);
    }
  }
  std::unordered_set<const xmlNode*> retimed_named;
  for (const FcpxmlShot& shot : fcpxml_shots(sequence, resources)) {
    ClipRecord record = fcpxml_clip_record(shot.item, shot.item_time, resources);
    record.document = opened.document;
    auto* item = const_cast<xmlNode*>(shot.item);
    const FrameRate& rate = opened.sequence_rate;
    record.shot = ShotPlace{{rate.frames(shot.first_frame), rate.frames(shot.length)}, item};
    if (fcpxml_retimed(item) && retimed_named.insert(item).second) {
      opened.warnings.push_back("quillory: warning: " +
                                clip_label(record.clip_name, item, opened.clips.size() + 1) +
                                " is retimed; its timecode is read as if it were not");
    }
    opened.clips.push_back(std::move(record));
    opened.clip_rates.push_back(project.rate);
  }
}

}  // namespace

TitleTemplate fcpxml_default_template() {
  return TitleTemplate{"Default", kFcpxmlTitleType, nullptr, {}, {}};
}

std::vector<xmlNode*> fcpxml_event_clips(const xmlNode* root, const FcpxmlResources& resources) {
  std::vector<xmlNode*> clips;
  const auto take_children = [&](const xmlNode* parent) {
    for (xmlNode* child = parent->children; child != nullptr; child = child->next) {
      if (is_fcpxml_clip_item(child, resources)) clips.push_back(child);
    }
  };
  take_children(root);
  // Events stand in a library or at the root, and their clips are kept in document order.
  for (const xmlNode* event : xml::all_descendants(root, "event")) take_children(event);
  return clips;
}

std::vector<SequenceSummary> summarize_fcpxml_projects(const xmlNode* root,
                                                       const FcpxmlResources& resources) {
  std::vector<SequenceSummary> projects;
  for (xmlNode* project : xml::all_descendants(root, "project")) {
    SequenceSummary summary;
    summary.name = xml::attribute(project, "name")
                       .value_or("Project " + std::to_string(projects.size() + 1));
    summary.element = project;
    const xmlNode* sequence = xml::first_child_element(project, "sequence");
    const auto frame_duration =
        resources.frame_duration(xml::attribute(sequence, "format").value_or(""));
    if (const auto row = frame_duration ? find_frame_rate_by_duration(*frame_duration) : std::nullopt) {
      summary.rate = row->type;
      summary.frame_rate = row->rate;
      summary.duration =
          fcpxml_time_attribute(sequence, "duration").rescaled_to(row->rate.per_second());
    }
    if (sequence != nullptr) {
      summary.video_tracks = fcpxml_lanes_used(sequence);
      summary.shots = fcpxml_shots(sequence, resources).size();
    }
    projects.push_back(std::move(summary));
  }
  return projects;
}

OpenedSource read_fcpxml_source(LoadedDocument loaded, bool tolerant, LineSink& out,
                                const std::optional<std::string>& project) {
  OpenedSource opened;
  opened.format = SourceFormat::Fcpxml;
  const xmlNode* root = xmlDocGetRootElement(loaded.document.get());
  const std::string version = fcpxml_version(root);
  if (!xml::is_element(root, "fcpxml") || !fcpxml_version_read(version)) {
    opened.status = OpenStatus::NotXmeml;
    opened.error = "it is FCPXML " + (version.empty() ? "without a version" : "version " + version) +
                   "; the FCPXML versions read are " + versions_read();
    return opened;
  }
  const FcpxmlResources resources(root);
  opened.sequences = summarize_fcpxml_projects(root, resources);
  const SequenceSummary* chosen = nullptr;
  for (const auto& summary : opened.sequences) {
    if (project && summary.name == *project && chosen == nullptr) chosen = &summary;
  }
  if (project && chosen == nullptr) {
    opened.status = OpenStatus::NoSequence;
    return opened;
  }
  out.line("...done!");
  opened.status = OpenStatus::Broken;
  opened.digest = std::move(loaded.digest);
  const std::string path = document_path(loaded.document.get());
  opened.document = xml::share(std::move(loaded.document));
  read_templates(root, opened.document, opened);
  const bool read = read_or_record_failure(opened, path, [&] {
    print_assets(root, out);
    if (chosen != nullptr) {
      read_project_shots(*chosen, resources, tolerant, opened);
    } else {
      EventClipReader reader(resources, opened.document, tolerant, opened, out);
      for (xmlNode* clip : fcpxml_event_clips(root, resources)) reader.read(clip);
    }
  });
  if (!read) return opened;
  remove_duplicates(opened.frame_rates);
  opened.status = OpenStatus::Opened;
  return opened;
}

}  // namespace quillory
