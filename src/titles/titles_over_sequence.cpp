#include "titles/titles_over_sequence.h"

#include <algorithm>
#include <new>
#include <optional>
#include <unordered_set>
#include <utility>

#include "titles/compose_title_text.h"
#include "titles/import_safe.h"
#include "titles/node_copies.h"
#include "titles/sequence_templates.h"
#include "titles/stream_writer.h"
#include "titles/title_prototype.h"
#include "titles/title_writer.h"
#include "source/user_message.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

xmlNode* shallow_copy(const xmlNode* node, xmlDoc* output) {
  xmlNode* copy = xmlDocCopyNode(const_cast<xmlNode*>(node), output, 2);
  if (copy == nullptr) throw std::bad_alloc();
  return copy;
}

// The output document: the declaration and root of the empty sequence, holding a copy of the
// chosen sequence in which every track is an empty element, filled item by item as it is
// written, and one more video track for the titles.
struct SequenceCopy {
  xml::Document document;
  xmlNode* sequence = nullptr;
  std::vector<const xmlNode*> video_sources, audio_sources;
  std::vector<xmlNode*> video_copies, audio_copies;
  xmlNode* title_track = nullptr;

  SequenceCopy(const xmlNode* source, const std::string& name) {
    document = readied_empty_sequence();
    xmlNode* root = xmlDocGetRootElement(document.get());
    xml::Node empty(xml::first_child_element(root, "sequence"));
    xmlUnlinkNode(empty.get());
    sequence = xmlAddChild(root, copy_outline(source));
    xml::set_child_text(sequence, "name", name);
    add_title_track();
  }

 private:
  xmlNode* copy_outline(const xmlNode* source) {
    xmlNode* copy = shallow_copy(source, document.get());
    for (const xmlNode* child = source->children; child != nullptr; child = child->next) {
      if (xmlIsBlankNode(const_cast<xmlNode*>(child))) continue;
      if (xml::is_element(child, "media")) {
        xmlAddChild(copy, copy_media(child));
      } else {
        xmlAddChild(copy, clean_copy(child, document.get()).release());
      }
    }
    return copy;
  }

  xmlNode* copy_media(const xmlNode* media) {
    xmlNode* copy = shallow_copy(media, document.get());
    for (const xmlNode* kind = media->children; kind != nullptr; kind = kind->next) {
      if (xmlIsBlankNode(const_cast<xmlNode*>(kind))) continue;
      const bool video = xml::is_element(kind, "video");
      if (!video && !xml::is_element(kind, "audio")) {
        xmlAddChild(copy, clean_copy(kind, document.get()).release());
        continue;
      }
      xmlNode* kind_copy = xmlAddChild(copy, shallow_copy(kind, document.get()));
      for (const xmlNode* child = kind->children; child != nullptr; child = child->next) {
        if (xmlIsBlankNode(const_cast<xmlNode*>(child))) continue;
        if (!xml::is_element(child, "track")) {
          xmlAddChild(kind_copy, clean_copy(child, document.get()).release());
          continue;
        }
        xmlNode* track = xmlAddChild(kind_copy, shallow_copy(child, document.get()));
        (video ? video_sources : audio_sources).push_back(child);
        (video ? video_copies : audio_copies).push_back(track);
      }
    }
    return copy;
  }

  // Above the copied video tracks, shaped like the empty sequence's: enabled, unlocked.
  void add_title_track() {
    xmlNode* media = xml::first_child_element(sequence, "media");
    if (media == nullptr) media = xmlNewChild(sequence, nullptr, BAD_CAST "media", nullptr);
    xmlNode* video = xml::first_child_element(media, "video");
    if (video == nullptr) video = xmlNewChild(media, nullptr, BAD_CAST "video", nullptr);
    xml::Node track(xmlNewDocNode(document.get(), nullptr, BAD_CAST "track", nullptr));
    if (!track || video == nullptr) throw std::bad_alloc();
    xmlNewTextChild(track.get(), nullptr, BAD_CAST "enabled", BAD_CAST "TRUE");
    xmlNewTextChild(track.get(), nullptr, BAD_CAST "locked", BAD_CAST "FALSE");
    title_track = video_copies.empty() ? xmlAddChild(video, track.release())
                                       : xmlAddNextSibling(video_copies.back(), track.release());
  }
};

// The progress lines of each shot, as for each placed clip, and its title's text; stops where
// the template lacks something a title needs.
std::vector<std::string> plan_titles(const std::vector<ClipRecord>& shots,
                                                const TitlePrototype& title,
                                                const TitleSettings& settings,
                                                std::vector<std::vector<std::string>>& made,
                                                LineSink& out) {
  std::vector<std::string> titles;
  titles.reserve(shots.size());
  for (std::size_t i = 0; i < shots.size(); ++i) {
    const ClipRecord& shot = shots[i];
    const TimeRange& place = shot.shot->place;
    out.line("Clip " + std::to_string(i + 1) + " at " + std::to_string(place.start.value()));
    out.line("  " + shot.clip_name + ", " + shot.file_name + ", " +
             std::to_string(place.duration.value()));
    auto& assumed = made.emplace_back();
    if (!title.completed().empty()) assumed.push_back(title.completed());
    title.check("shot " + std::to_string(i + 1) + " \"" + shown(shot.clip_name) + "\" (" +
                xml::where(shot.xml) + ")");
    titles.push_back(compose_title_text(shot, settings.lines));
    out.progress("placing", i + 1, shots.size());
  }
  return titles;
}

// Writes the copied tracks item by item and the title track title by title.
class TrackWriter {
 public:
  TrackWriter(const SequenceCopy& copy, const std::vector<ClipRecord>& shots,
              const std::vector<std::string>& titles, const TitleSettings& settings,
              TitleWriter& title_writer, ImportSafeOutput& import_safe, LineSink& progress)
      : copy_(copy), shots_(shots), titles_(titles), title_writer_(title_writer), import_safe_(import_safe),
        progress_(progress) {
    if (settings.timecode_reader) {
      filter_.emplace();
      for (const auto& shot : shots) seen_.insert(shot.shot->item);
    }
  }

  // The tracks in document order: the copied video tracks, the title track, the audio tracks.
  std::vector<xmlNode*> tracks() const {
    std::vector<xmlNode*> tracks = copy_.video_copies;
    tracks.push_back(copy_.title_track);
    tracks.insert(tracks.end(), copy_.audio_copies.begin(), copy_.audio_copies.end());
    return tracks;
  }

  void fill(StreamWriter& out, std::size_t index) {
    const std::size_t videos = copy_.video_sources.size();
    if (index == videos) return write_titles(out);
    const xmlNode* source =
        index < videos ? copy_.video_sources[index] : copy_.audio_sources[index - videos - 1];
    for (const xmlNode* child = source->children; child != nullptr; child = child->next) {
      if (xmlIsBlankNode(const_cast<xmlNode*>(child))) continue;
      const xml::Node item = clean_copy(child, copy_.document.get());
      if (filter_ && seen_.count(child) != 0) filter_->append_to(item.get());
      if (item->type == XML_ELEMENT_NODE) import_safe_.prepare_item(item.get());
      out.child(item.get());
    }
  }

 private:
  void write_titles(StreamWriter& out) {
    for (std::size_t i = 0; i < titles_.size(); ++i) {
      title_writer_.write(out, shots_[i].shot->place, titles_[i], i + 1);
      progress_.progress("writing", i + 1, titles_.size());
    }
  }

  const SequenceCopy& copy_;
  const std::vector<ClipRecord>& shots_;
  const std::vector<std::string>& titles_;  // the text of each shot's title
  TitleWriter& title_writer_;
  ImportSafeOutput& import_safe_;
  LineSink& progress_;
  std::optional<TimecodeReader> filter_;
  std::unordered_set<const xmlNode*> seen_;  // the clip items that give a shot
};

// The copy's length: the source's, or the end of its last shot where that lies further.
RationalTime sequence_duration(const xmlNode* sequence, const std::vector<ClipRecord>& shots,
                               const FrameRate& rate) {
  const RationalTime stated = rate.frames(
      xml::leading_integer(xml::text_content(xml::first_child_element(sequence, "duration"))));
  return shots.empty() ? stated : std::max(stated, shots.back().shot->place.end());
}

}  // namespace

AssumptionReport create_titles_over_sequence(const std::vector<TitleTemplate>& templates,
                                             const std::vector<ClipRecord>& shots,
                                             const xmlNode* sequence,
                                             const TitleSettings& settings,
                                             const Destination& to, LineSink& out) {
  to.require_known();
  const TitleTemplate& chosen = choose_template(templates, settings.template_name);
  SequenceCopy copy(sequence, settings.sequence_name);
  const TitlePrototype title(chosen, copy.document.get(), settings.tolerant);
  std::vector<std::vector<std::string>> made;
  const auto titles = plan_titles(shots, title, settings, made, out);

  ImportSafeOutput import_safe(shots, ImportSafeRun{settings.source_digest, settings.sequence_name,
                                                    sequence_duration(sequence, shots, settings.rate)});
  import_safe.add_definitions(sequence->doc);
  import_safe.prepare_sequence(copy.sequence, xmlDocGetRootElement(copy.document.get()));
  TitleWriter title_writer(title, &import_safe);
  TrackWriter tracks(copy, shots, titles, settings, title_writer, import_safe, out);
  deliver(to, [&](int fd) {
    StreamWriter writer(fd);
    writer.write(copy.document.get(), tracks.tracks(),
                 [&](std::size_t track) { tracks.fill(writer, track); });
    return writer.finish();
  });

  AssumptionReport report = report_assumptions(templates, shots, made);
  report.warnings.insert(report.warnings.begin(), import_safe.warnings().begin(),
                         import_safe.warnings().end());
  if (shots.empty()) {
    report.warnings.push_back("quillory: warning: no clip item is seen in the sequence \"" +
                              shown(xml::text_content(xml::first_child_element(sequence, "name"))) +
                              "\" (" + xml::where(sequence) + "): its title track is empty");
  }
  return report;
}

}  // namespace quillory
