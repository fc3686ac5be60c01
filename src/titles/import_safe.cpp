#include "titles/import_safe.h"

#include <uuid/uuid.h>

#include <new>

#include "source/timecode.h"
#include "startup/frame_rates.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

constexpr const char* kTitleId = "Quillory Card";

// A version 5 (name-based) UUID in capitals, as Final Cut Pro writes them: the same name
// always gives the same UUID.
std::string name_uuid(const std::string& name) {
  uuid_t uuid;
  uuid_generate_sha1(uuid, *uuid_get_template("url"), name.data(), name.size());
  char text[37];
  uuid_unparse_upper(uuid, text);
  return text;
}

// The name a UUID of the run derives from: the digest of the source's bytes (not its path, so
// that a copy of the export elsewhere writes the same file, and two exports of the same name
// differ), the sequence name and what it is for.
std::string uuid_name(const ImportSafeRun& run, const std::string& what) {
  return "quillory:" + run.source_digest + "\n" + run.sequence_name + "\n" + what;
}

std::string describe(const xmlNode* element) {
  const std::string name = xml::text_content(xml::first_child_element(element, "name"));
  return "<" + std::string(reinterpret_cast<const char*>(element->name)) + "> \"" + name + "\"";
}

bool is_file(const xmlNode* element) { return xmlStrEqual(element->name, BAD_CAST "file"); }

void add_text_child(xmlNode* parent, const char* name, const std::string& text) {
  if (xmlNewTextChild(parent, nullptr, BAD_CAST name, BAD_CAST text.c_str()) == nullptr) {
    throw std::bad_alloc();
  }
}

void add_copy(xmlNode* parent, const xmlNode* node) {
  xmlNode* copy = xmlDocCopyNode(const_cast<xmlNode*>(node), parent->doc, 1);
  if (copy == nullptr) throw std::bad_alloc();
  xmlAddChild(parent, copy);
}

}  // namespace

ImportSafeOutput::ImportSafeOutput(const std::vector<ClipRecord>& clips, ImportSafeRun run)
    : run_(std::move(run)), format_(media_video_format(clips)) {
  for (const auto& clip : clips) add_definitions(clip.document.get());
}

void ImportSafeOutput::add_definitions(const xmlDoc* source) {
  if (source == nullptr || !read_.insert(source).second) return;
  for (xmlNode* file : xml::all_descendants(xml::as_node(const_cast<xmlDoc*>(source)), "file")) {
    const auto id = xml::attribute(file, "id");
    if (id && file->children != nullptr) definitions_.emplace(*id, file);
  }
}

void ImportSafeOutput::prepare_sequence(xmlNode* sequence, xmlNode* outline) {
  xml::set_child_text(sequence, "duration", std::to_string(run_.duration.value()));
  xml::set_child_text(sequence, "uuid", name_uuid(uuid_name(run_, "sequence")));
  // A copied sequence may have no rate (tolerant reading keeps it as written).
  xmlNode* rate = xml::first_child_element(sequence, "rate");
  sequence_rate_ = rate;
  add_format(sequence, rate);
  if (rate != nullptr && xml::first_child_element(sequence, "timecode") == nullptr) {
    add_timecode(rate);
  }
  check_ids(outline);
}

// media/video's <format>, first in it as editing programs write it, where it has none.
void ImportSafeOutput::add_format(xmlNode* sequence, const xmlNode* rate) const {
  xmlNode* media = xml::first_child_element(sequence, "media");
  xmlNode* video = media != nullptr ? xml::first_child_element(media, "video") : nullptr;
  if (video == nullptr || xml::first_child_element(video, "format") != nullptr) return;
  xml::Node format(xmlNewDocNode(sequence->doc, nullptr, BAD_CAST "format", nullptr));
  if (!format) throw std::bad_alloc();
  xmlNode* sample = xmlNewChild(format.get(), nullptr, BAD_CAST "samplecharacteristics", nullptr);
  if (sample == nullptr) throw std::bad_alloc();
  if (rate != nullptr) add_copy(sample, rate);
  for (const auto& [name, value] :
       {std::pair{"width", std::to_string(format_.frame.width)},
        std::pair{"height", std::to_string(format_.frame.height)},
        std::pair{"anamorphic", format_.anamorphic},
        std::pair{"pixelaspectratio", format_.pixel_aspect_ratio},
        std::pair{"fielddominance", format_.field_dominance}, std::pair{"colordepth", std::string("24")}}) {
    add_text_child(sample, name, value);
  }
  if (video->children == nullptr) {
    xmlAddChild(video, format.release());
  } else {
    xmlAddPrevSibling(video->children, format.release());
  }
}

// The sequence's <timecode>, after its `rate`: from 00:00:00:00, drop-frame at 29.97 and 59.94.
void ImportSafeOutput::add_timecode(xmlNode* rate) {
  const auto known = find_frame_rate_loosely(
      xml::text_content(xml::first_child_element(rate, "ntsc")),
      xml::leading_integer(xml::text_content(xml::first_child_element(rate, "timebase"))));
  TimecodeFormat shape;
  shape.timebase = known ? known->rate.timebase() : 30;
  shape.drop_frame = known && known->frame_rate().drop_frame();
  xml::Node timecode(xmlNewDocNode(rate->doc, nullptr, BAD_CAST "timecode", nullptr));
  if (!timecode) throw std::bad_alloc();
  add_copy(timecode.get(), rate);
  add_text_child(timecode.get(), "string", format_timecode(0, shape));
  add_text_child(timecode.get(), "frame", "0");
  add_text_child(timecode.get(), "displayformat", shape.drop_frame ? "DF" : "NDF");
  xmlAddNextSibling(rate, timecode.release());
}

void ImportSafeOutput::prepare_title_template(xmlNode* title) {
  if (xmlNode* rate = xml::first_child_element(title, "rate")) {
    for (const char* part : {"ntsc", "timebase"}) {
      const xmlNode* written =
          sequence_rate_ != nullptr ? xml::first_child_element(sequence_rate_, part) : nullptr;
      xml::set_child_text(rate, part, written != nullptr ? xml::text_content(written) : "");
    }
  }
  xml::set_child_text(title, "in", "0");
  title_ = describe(title);
  xml::walk_elements(title, [this](xmlNode* element) {
    if (!is_file(element) && xmlHasProp(element, BAD_CAST "id")) {
      title_inner_ids_.emplace_back(*xml::attribute(element, "id"), describe(element));
    }
  });
}

std::string ImportSafeOutput::title_id(std::size_t number) {
  return std::string(kTitleId) + " " + std::to_string(number);
}

std::string ImportSafeOutput::title_uuid(std::size_t number) const {
  return name_uuid(uuid_name(run_, "title " + std::to_string(number)));
}

void ImportSafeOutput::note_title(std::size_t number) {
  note_id(title_id(number), title_);
  for (const auto& [id, who] : title_inner_ids_) note_id(id, who);
}

void ImportSafeOutput::prepare_item(xmlNode* item) {
  define_files(item);
  check_ids(item);
}

// Makes the first <file> of each id a full definition, copying the source's where the output
// has only a reference there.
void ImportSafeOutput::define_files(xmlNode* item) {
  std::vector<xmlNode*> files = xml::all_descendants(item, "file");
  if (is_file(item)) files.insert(files.begin(), item);
  for (xmlNode* file : files) {
    const auto id = xml::attribute(file, "id");
    if (!id || !defined_.insert(*id).second || file->children != nullptr) continue;
    const auto definition = definitions_.find(*id);
    if (definition == definitions_.end()) continue;  // defined nowhere: nothing to copy
    if (file->parent == nullptr) {
      // The item is itself the reference (a <file> straight in a copied track): it is filled
      // in place, the caller still holding it.
      for (const xmlNode* child = definition->second->children; child != nullptr; child = child->next) {
        xmlNode* copy = xmlDocCopyNode(const_cast<xmlNode*>(child), file->doc, 1);
        if (copy == nullptr) throw std::bad_alloc();
        xmlAddChild(file, copy);
      }
      continue;
    }
    xmlNode* copy = xmlDocCopyNode(const_cast<xmlNode*>(definition->second), file->doc, 1);
    if (copy == nullptr) throw std::bad_alloc();
    xmlReplaceNode(file, copy);
    xmlFreeNode(file);
  }
}

// Checks every element, files and references aside, against the ids written before: a file
// reference, or an empty element such as <sequence id="s"/> for a nested sequence met before,
// is meant to repeat its definition's id.
void ImportSafeOutput::check_ids(xmlNode* item) {
  const auto check = [this](xmlNode* element) {
    if (!is_file(element) && element->children != nullptr && xmlHasProp(element, BAD_CAST "id")) {
      note_id(*xml::attribute(element, "id"), describe(element));
    }
  };
  check(item);
  xml::walk_elements(item, check);
}

void ImportSafeOutput::note_id(const std::string& id, const std::string& who) {
  const auto [earlier, added] = first_with_id_.emplace(id, who);
  if (added) return;
  warnings_.push_back("quillory: warning: the id \"" + id + "\" of " + who + " repeats that of " +
                      earlier->second + "; importers will read the second as the first");
}

}  // namespace quillory
