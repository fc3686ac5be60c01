#include "source/get_info_from_clips.h"

#include <stdexcept>
#include <unordered_map>
#include <unordered_set>

#include "xml/failure.h"
#include "source/media_file_record.h"
#include "source/parse_xml_file.h"
#include "xml/read_xml.h"
#include "xml/xml_nodes.h"
#include "xml/xpath_query.h"
#include "startup/frame_rates.h"

namespace quillory {
namespace {

// Finds catalogue records by file id, first record wins, as a search from the start would.
class Catalogue {
 public:
  explicit Catalogue(std::vector<MediaFileRecord> records) : records_(std::move(records)) {
    for (std::size_t i = 0; i < records_.size(); ++i) {
      if (records_[i].id) {
        by_id_.emplace(*records_[i].id, i);
      } else if (!first_without_id_) {
        first_without_id_ = i;
      }
    }
  }

  const MediaFileRecord* find(const std::optional<std::string>& id) const {
    if (!id) return first_without_id_ ? &records_[*first_without_id_] : nullptr;
    const auto found = by_id_.find(*id);
    return found == by_id_.end() ? nullptr : &records_[found->second];
  }

 private:
  std::vector<MediaFileRecord> records_;
  std::unordered_map<std::string, std::size_t> by_id_;
  std::optional<std::size_t> first_without_id_;
};

// The per-clip queries, compiled once for the whole open.
struct ClipQueries {
  xml::XPathQuery generator_item{"media/video/track/generatoritem"};
  xml::XPathQuery effect_id{"effect/effectid"};
  xml::XPathQuery file{".//file"};
  xml::XPathQuery scene{"logginginfo/scene"};
  xml::XPathQuery shottake{"logginginfo/shottake"};
  xml::XPathQuery lognote{"logginginfo/lognote"};
  xml::XPathQuery ntsc{".//ntsc"};
  xml::XPathQuery timebase{".//timebase"};
};

std::string clip_label(const std::string& name, const xmlNode* clip) {
  return "clip \"" + name + "\" (" + xml::where(clip) + ")";
}

std::string required_text(xml::XPathQuery& query, xmlNode* clip, const std::string& clip_name) {
  xmlNode* node = query.first(clip);
  if (node == nullptr) {
    fail(clip_label(clip_name, clip) + " has no <" + query.expression() +
         ">; a media clip must log its scene, shot/take and log note (empty elements will do)");
  }
  return xml::text_content(node);
}

std::string accepted_rates() {
  std::string text;
  for (const auto& rate : FRAME_RATES) {
    if (!text.empty()) text += ", ";
    text += std::string(rate.ntsc) + "/" + std::to_string(rate.timebase);
  }
  return text;
}

void collect_generator_clip(xmlNode* item, const std::string& name, ClipQueries& queries,
                            const xml::SharedDocument& doc, OpenedSource& opened) {
  xmlNode* effect_id = queries.effect_id.first(item);
  if (effect_id == nullptr) return;
  const std::string type = xml::text_content(effect_id);
  if (type == "Text" || type == "Outline Text") {
    opened.templates.push_back(TitleTemplate{name, type, item, doc});
  }
}

void collect_media_clip(xmlNode* clip, const std::string& name, ClipQueries& queries,
                        const Catalogue& catalogue, const xml::SharedDocument& doc,
                        OpenedSource& opened, LineSink& out) {
  xmlNode* file = queries.file.first(clip);
  if (file == nullptr) fail(clip_label(name, clip) + " has no <file> element");
  const std::optional<std::string> file_id = xml::attribute(file, "id");
  const MediaFileRecord* media = catalogue.find(file_id);
  if (media == nullptr) {
    fail(clip_label(name, clip) + " uses the file " +
         (file_id ? "id \"" + *file_id + "\"" : "without an id") + " (" + xml::where(file) +
         "), which no <file> definition in the document has");
  }
  ClipRecord record;
  record.clip_name = name;
  record.file_name = media->name;
  record.reel = media->reel;
  record.frame_string = media->frame_string;
  record.time = media->time;
  record.scene = required_text(queries.scene, clip, name);
  record.shottake = required_text(queries.shottake, clip, name);
  record.lognote = required_text(queries.lognote, clip, name);
  record.xml = clip;
  record.document = doc;
  opened.clips.push_back(std::move(record));

  xmlNode* ntsc_node = queries.ntsc.first(clip);
  xmlNode* timebase_node = queries.timebase.first(clip);
  if (ntsc_node == nullptr || timebase_node == nullptr) {
    fail(clip_label(name, clip) + " has no <" + (ntsc_node == nullptr ? "ntsc" : "timebase") +
         "> element, so its frame rate is unknown");
  }
  const std::string ntsc = xml::text_content(ntsc_node);
  const long long timebase = xml::leading_integer(xml::text_content(timebase_node));
  const auto rate = find_frame_rate(ntsc, timebase);
  if (!rate) {
    out.line("clip " + name + ": no frame rate matches ntsc " + ntsc + ", timebase " +
             std::to_string(timebase));
    fail(clip_label(name, clip) + ": no frame rate matches ntsc \"" + ntsc + "\" and timebase " +
         std::to_string(timebase) + " (" + xml::where(ntsc_node) +
         "); accepted ntsc/timebase pairs: " + accepted_rates());
  }
  out.line("clip " + name + ": " + describe(*rate));
  opened.clip_rates.emplace_back(rate->type);
  opened.frame_rates.emplace_back(rate->type);
}

// Removes later repeats of a name in place; true when any was removed.
bool remove_duplicates(std::vector<std::string>& names) {
  std::unordered_set<std::string> seen;
  std::vector<std::string> kept;
  kept.reserve(names.size());
  for (auto& name : names) {
    if (seen.insert(name).second) kept.push_back(std::move(name));
  }
  const bool removed = kept.size() != names.size();
  names = std::move(kept);
  return removed;
}

void read_clips(const xml::SharedDocument& doc, OpenedSource& opened, LineSink& out) {
  xml::XPathQuery all_files("//file");
  const Catalogue catalogue(get_files_info(all_files.all(xml::as_node(doc.get())), out));
  ClipQueries queries;
  xml::XPathQuery all_clips("//clip");
  for (xmlNode* clip : all_clips.all(xml::as_node(doc.get()))) {
    const xmlNode* name_node = xml::first_child_element(clip, "name");
    if (name_node == nullptr) fail("a clip has no <name> (" + xml::where(clip) + ")");
    const std::string name = xml::text_content(name_node);
    if (xmlNode* item = queries.generator_item.first(clip)) {
      collect_generator_clip(item, name, queries, doc, opened);
    } else {
      collect_media_clip(clip, name, queries, catalogue, doc, opened, out);
    }
  }
}

}  // namespace

std::string base_name(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string sequence_name_for(const std::string& path) {
  std::string name = base_name(path);
  const auto dot = name.rfind('.');
  if (dot != std::string::npos && dot > 0) name.erase(dot);
  return name;
}

OpenedSource get_info_from_clips(const std::string& path, const TitleTemplate& built_in,
                                 LineSink& out) {
  OpenedSource opened;
  out.line("opening...");
  LoadedDocument loaded;
  try {
    loaded = parse_xml_file(path, out);
  } catch (const std::exception& error) {
    opened.error = error.what();
    return opened;
  }
  if (loaded.root_name != "xmeml") {
    opened.status = OpenStatus::NotXmeml;
    return opened;
  }
  out.line("...done!");
  opened.status = OpenStatus::Broken;
  opened.templates = {built_in};
  try {
    read_clips(xml::share(std::move(loaded.document)), opened, out);
  } catch (const std::exception& error) {
    opened.error = error.what();
    return opened;
  }
  opened.rates_repeated = remove_duplicates(opened.frame_rates);
  opened.status = OpenStatus::Opened;
  return opened;
}

}  // namespace quillory
