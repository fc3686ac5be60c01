#include "source/get_info_from_clips.h"

#include <filesystem>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "source/fcpxml_reader.h"
#include "source/fcpxml_resources.h"
#include "source/incomplete_input.h"
#include "source/catalogue.h"
#include "source/media_file_record.h"
#include "source/parse_xml_file.h"
#include "xml/read_xml.h"
#include "xml/xml_nodes.h"
#include "startup/frame_rates.h"

namespace quillory {
namespace {

std::string accepted_rates() {
  std::string text;
  for (const auto& rate : FRAME_RATES) {
    if (!text.empty()) text += ", ";
    text += std::string(rate.rate.ntsc_text()) + "/" + std::to_string(rate.rate.timebase());
  }
  return text;
}

// Reads the clips one at a time into `opened`. Where a clip breaks a rule, strict reading
// stops; tolerant reading notes the assumption it makes in the clip's record.
class ClipReader {
 public:
  ClipReader(const xml::SharedDocument& doc, bool tolerant, OpenedSource& opened, LineSink& out)
      : doc_(doc), tolerant_(tolerant), opened_(opened), out_(out),
        catalogue_(get_files_info(xml::all_descendants(xml::as_node(doc.get()), "file"), out,
                                  tolerant)) {}

  const Catalogue& catalogue() const { return catalogue_; }

  // Where a sequence's shots are the clips, a clip element gives a template or nothing.
  void read_template(xmlNode* clip) {
    if (xmlNode* item = xml::first_element_at(clip, {"media", "video", "track", "generatoritem"})) {
      read_generator_clip(item, xml::text_content(xml::first_child_element(clip, "name")), {});
    }
  }

  void read(xmlNode* clip) {
    std::vector<std::string> made;
    const xmlNode* name_node = xml::first_child_element(clip, "name");
    if (name_node == nullptr) {
      assume_or_fail(tolerant_, made, "a clip has no <name> (" + xml::where(clip) + ")",
                     "no <name>, name left empty");
    }
    const std::string name = xml::text_content(name_node);
    if (xmlNode* item = xml::first_element_at(clip, {"media", "video", "track", "generatoritem"})) {
      read_generator_clip(item, name, std::move(made));
    } else {
      read_media_clip(clip, name, std::move(made));
    }
  }

 private:
  void read_generator_clip(xmlNode* item, const std::string& name,
                           std::vector<std::string> made) {
    xmlNode* effect_id = xml::first_element_at(item, {"effect", "effectid"});
    if (effect_id == nullptr) return;
    const std::string type = xml::text_content(effect_id);
    if (type == "Text" || type == "Outline Text") {
      opened_.templates.push_back(TitleTemplate{name, type, item, doc_, std::move(made)});
    }
  }

  void read_media_clip(xmlNode* clip, const std::string& name, std::vector<std::string> made) {
    ClipRecord record;
    record.clip_name = name;
    if (const MediaFileRecord* media = find_media(clip, name, made)) {
      record.file_name = media->name;
      record.reel = media->reel;
      record.frame_string = media->frame_string;
      record.time = media->time;
      record.media_file = media->xml;
      record.path_url = media->path_url;
      made.insert(made.end(), media->assumptions.begin(), media->assumptions.end());
    }
    if (tolerant_ && xml::first_child_element(clip, "logginginfo") == nullptr) {
      made.emplace_back("no <logginginfo>, scene, shot/take and log note left empty");
    } else {
      record.scene = logged(clip, "scene", name, "scene", made);
      record.shottake = logged(clip, "shottake", name, "shot/take", made);
      record.lognote = logged(clip, "lognote", name, "log note", made);
    }
    record.xml = clip;
    record.document = doc_;
    record.assumptions = std::move(made);
    opened_.clips.push_back(std::move(record));
    read_rate(clip, name, opened_.clips.back().assumptions);
  }

  // The catalogue record of the clip's media file; none (tolerant only) when there is none.
  const MediaFileRecord* find_media(xmlNode* clip, const std::string& name,
                                    std::vector<std::string>& made) {
    xmlNode* file = xml::first_descendant(clip, "file");
    if (file == nullptr) {
      assume_or_fail(tolerant_, made, clip_label(name, clip) + " has no <file> element",
                     "no <file>, file facts left empty");
      return nullptr;
    }
    const std::optional<std::string> file_id = xml::attribute(file, "id");
    const MediaFileRecord* media = catalogue_.find(file_id);
    if (!file_id && media != nullptr && media->xml != file) warn_borrowed_file(clip, name, file, *media);
    if (media == nullptr) {
      const std::string id = file_id ? "id \"" + shown(*file_id) + "\"" : "without an id";
      assume_or_fail(tolerant_, made,
                     clip_label(name, clip) + " uses the file " + id + " (" + xml::where(file) +
                         "), which no <file> definition in the document has",
                     "no <file> definition for its file " + id + ", file facts left empty");
    }
    return media;
  }

  // Files without ids all match the first definition without one: a clip whose own <file> has
  // no id shows that one's facts, which may be another file's.
  void warn_borrowed_file(const xmlNode* clip, const std::string& name, const xmlNode* file,
                          const MediaFileRecord& media) {
    const auto line = [](const xmlNode* node) { return std::to_string(xmlGetLineNo(node)); };
    opened_.warnings.push_back(
        "quillory: warning: clip " + std::to_string(opened_.clips.size() + 1) + " \"" +
        shown(name) + "\" (line " + line(clip) + "): its <file> at line " + line(file) +
        " has no id, so its file name, reel, timecode and date are those of the <file> without "
        "an id at line " + line(media.xml));
  }

  // The text of the clip's logginginfo/`element`.
  std::string logged(xmlNode* clip, const char* element, const std::string& name,
                     const std::string& field, std::vector<std::string>& made) {
    xmlNode* node = xml::first_element_at(clip, {"logginginfo", element});
    if (node == nullptr) {
      const std::string path = std::string("logginginfo/") + element;
      assume_or_fail(tolerant_, made,
                     clip_label(name, clip) + " has no <" + path +
                         ">; a media clip must log its scene, shot/take and log note (empty "
                         "elements will do)",
                     "no <" + path + ">, " + field + " left empty");
    }
    return xml::text_content(node);
  }

  void read_rate(xmlNode* clip, const std::string& name, std::vector<std::string>& made) {
    xmlNode* ntsc_node = xml::first_descendant(clip, "ntsc");
    xmlNode* timebase_node = xml::first_descendant(clip, "timebase");
    const bool missing = ntsc_node == nullptr || timebase_node == nullptr;
    if (missing) {
      const std::string element = ntsc_node == nullptr ? "ntsc" : "timebase";
      assume_or_fail(tolerant_, made,
                     clip_label(name, clip) + " has no <" + element +
                         "> element, so its frame rate is unknown",
                     "no <" + element + ">, frame rate left unknown");
    }
    const std::string ntsc = xml::text_content(ntsc_node);
    const long long timebase = xml::leading_integer(xml::text_content(timebase_node));
    const auto rate =
        tolerant_ ? find_frame_rate_loosely(ntsc, timebase) : find_frame_rate(ntsc, timebase);
    if (!rate) {
      out_.line("clip " + name + ": no frame rate matches ntsc " + ntsc + ", timebase " +
                std::to_string(timebase));
      if (!missing) {
        assume_or_fail(tolerant_, made,
                       clip_label(name, clip) + ": no frame rate matches ntsc \"" + shown(ntsc) +
                           "\" and timebase " + std::to_string(timebase) + " (" +
                           xml::where(ntsc_node) + "); accepted ntsc/timebase pairs: " +
                           accepted_rates(),
                       "no frame rate matches ntsc \"" + shown(ntsc) + "\" and timebase " +
                           std::to_string(timebase) + ", frame rate left unknown");
      }
      opened_.clip_rates.emplace_back();
      return;
    }
    if (rate->rate.ntsc_text() != ntsc) {
      made.push_back("ntsc \"" + shown(ntsc) + "\" read as " + std::string(rate->rate.ntsc_text()));
    }
    out_.line("clip " + name + ": " + describe(*rate));
    opened_.clip_rates.emplace_back(rate->type);
    opened_.frame_rates.emplace_back(rate->type);
  }

  const xml::SharedDocument& doc_;
  bool tolerant_;
  OpenedSource& opened_;
  LineSink& out_;
  Catalogue catalogue_;
};

// Removes later repeats of a name in place.
void remove_duplicates(std::vector<std::string>& names) {
  std::unordered_set<std::string> seen;
  std::vector<std::string> kept;
  kept.reserve(names.size());
  for (auto& name : names) {
    if (seen.insert(name).second) kept.push_back(std::move(name));
  }
  names = std::move(kept);
}

const SequenceSummary* find_sequence(const std::vector<SequenceSummary>& sequences,
                                     const std::string& name) {
  for (const auto& sequence : sequences) {
    if (sequence.name == name) return &sequence;
  }
  return nullptr;
}

// The chosen sequence's rate: one the table holds, else (tolerant reading) kept as written.
void check_sequence_rate(const SequenceSummary& sequence, bool tolerant, OpenedSource& opened) {
  opened.sequence_rate = sequence.frame_rate;
  if (!sequence.rate.empty()) {
    opened.frame_rates = {sequence.rate};
    return;
  }
  const std::string what = "sequence \"" + shown(sequence.name) + "\" (" + xml::where(sequence.element) +
                           "): no frame rate matches " + sequence.written_rate;
  if (!tolerant) throw IncompleteInput("quillory: " + what + "; accepted ntsc/timebase pairs: " + accepted_rates());
  opened.warnings.push_back("quillory: warning: " + what + ", kept as written");
}

void read_clips(const xml::SharedDocument& doc, bool tolerant, OpenedSource& opened,
                LineSink& out, const SequenceSummary* sequence, const DocumentIndex& index) {
  ClipReader reader(doc, tolerant, opened, out);
  const auto clips = xml::all_descendants(xml::as_node(doc.get()), "clip");
  if (sequence == nullptr) {
    for (xmlNode* clip : clips) reader.read(clip);
    return;
  }
  for (xmlNode* clip : clips) reader.read_template(clip);
  check_sequence_rate(*sequence, tolerant, opened);
  opened.clips = read_shots(*sequence, index, reader.catalogue(), doc);
  opened.clip_rates.assign(opened.clips.size(), sequence->rate);
}

// The recovering parser keeps what it read before a fault it could not mend, and nothing says
// so but this.
std::string damage_warning(const LoadedDocument::Damage& damage, std::size_t clips) {
  return "quillory: warning: the document is damaged after line " + std::to_string(damage.line) +
         " (" + damage.message + "); " + std::to_string(clips) +
         (clips == 1 ? " clip was" : " clips were") +
         " read before it; the titles may be incomplete";
}

// A comment or processing instruction before the root element <xmeml>: tolerant reading reads
// the document by its root element's name, strict reading refuses it, saying so.
bool read_past_node_before_root(const LoadedDocument& loaded, bool tolerant, OpenedSource& opened) {
  if (!loaded.before_root || loaded.before_root->root_element != "xmeml") return false;
  const auto& node = *loaded.before_root;
  const std::string what = "a " + node.kind + " at line " + std::to_string(node.line) +
                           " stands before <xmeml>";
  if (!tolerant) {
    opened.error = what;
    opened.incomplete = true;
    return false;
  }
  const auto* url = loaded.document->URL;
  const std::string path = url != nullptr ? reinterpret_cast<const char*>(url) : "the source";
  opened.warnings.push_back("quillory: warning: " + path + ": " + what +
                            ", read as an xmeml document");
  return true;
}

}  // namespace

std::string clip_label(const std::string& name, const xmlNode* clip, std::size_t number) {
  return "clip " + (number != 0 ? std::to_string(number) + " " : "") + "\"" + shown(name) +
         "\" (" + xml::where(clip) + ")";
}

std::string base_name(const std::string& path) {
  return std::filesystem::path(path).filename().string();
}

std::string sequence_name_for(const std::string& path) {
  std::filesystem::path file(path);
  if (!file.has_filename()) file = file.parent_path();  // a bundle named with its last slash
  return file.stem().string();
}

bool read_or_record_failure(OpenedSource& opened, const std::string& path,
                            const std::function<void()>& read) {
  try {
    read();
    return true;
  } catch (const IncompleteInput& error) {
    opened.error = error.what();
    opened.incomplete = true;
  } catch (const std::exception& error) {
    opened.error = failure_message(error, path);
  }
  return false;
}

OpenedSource get_info_from_clips(const std::string& path, const TitleTemplate& built_in,
                                 bool tolerant, LineSink& out,
                                 const std::optional<std::string>& sequence) {
  out.line("opening...");
  LoadedDocument loaded;
  try {
    // An FCPXML bundle is a folder that keeps its document inside.
    loaded = parse_xml_file(fcpxml_document_path(path), out);
  } catch (const std::exception& error) {
    OpenedSource opened;
    opened.error = failure_message(error, path);
    return opened;
  }
  return read_loaded_source(std::move(loaded), built_in, tolerant, out, sequence);
}

OpenedSource read_loaded_source(LoadedDocument loaded, const TitleTemplate& built_in,
                                bool tolerant, LineSink& out,
                                const std::optional<std::string>& sequence) {
  if (loaded.root_name == "fcpxml") {
    return read_fcpxml_source(std::move(loaded), tolerant, out, sequence);
  }
  OpenedSource opened;
  if (loaded.root_name != "xmeml" && !read_past_node_before_root(loaded, tolerant, opened)) {
    opened.status = OpenStatus::NotXmeml;
    return opened;
  }
  const DocumentIndex index(loaded.document.get());
  opened.sequences = summarize_sequences(index, tolerant);
  const SequenceSummary* chosen = sequence ? find_sequence(opened.sequences, *sequence) : nullptr;
  if (sequence && chosen == nullptr) {
    opened.status = OpenStatus::NoSequence;
    return opened;
  }
  out.line("...done!");
  opened.status = OpenStatus::Broken;
  opened.templates = {built_in};
  opened.digest = std::move(loaded.digest);
  opened.sequence = chosen != nullptr ? chosen->element : nullptr;
  const auto* url = loaded.document->URL;
  const std::string path = url != nullptr ? reinterpret_cast<const char*>(url) : "the source";
  opened.document = xml::share(std::move(loaded.document));
  const bool read = read_or_record_failure(opened, path, [&] {
    read_clips(opened.document, tolerant, opened, out, chosen, index);
  });
  if (!read) return opened;
  if (loaded.damage) opened.warnings.push_back(damage_warning(*loaded.damage, opened.clips.size()));
  remove_duplicates(opened.frame_rates);
  opened.status = OpenStatus::Opened;
  return opened;
}

}  // namespace quillory
