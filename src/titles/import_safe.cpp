#include "titles/import_safe.h"

#include <uuid/uuid.h>

#include <filesystem>
#include <new>
#include <unordered_map>
#include <unordered_set>

#include "xml/xml_nodes.h"
#include "xml/xpath_query.h"

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

// The name a UUID of the run derives from: the source's file name (not its folder, so that a
// copy of the project elsewhere writes the same file), the sequence name and what it is for.
std::string uuid_name(const ImportSafeRun& run, const std::string& what) {
  return "quillory:" + std::filesystem::path(run.source).filename().string() + "\n" +
         run.sequence_name + "\n" + what;
}

void set_child_text(xmlNode* parent, const char* name, const std::string& text) {
  if (parent == nullptr) return;
  if (xmlNode* child = xml::first_child_element(parent, name)) xml::set_text(child, text);
}

// The full <file> definitions of the clips' source documents, the first of each id.
class FileDefinitions {
 public:
  explicit FileDefinitions(const std::vector<ClipRecord>& clips) {
    std::unordered_set<const xmlDoc*> read;
    xml::XPathQuery files("//file");
    for (const auto& clip : clips) {
      if (!clip.document || !read.insert(clip.document.get()).second) continue;
      for (xmlNode* file : files.all(xml::as_node(clip.document.get()))) {
        const auto id = xml::attribute(file, "id");
        if (id && file->children != nullptr) by_id_.emplace(*id, file);
      }
    }
  }

  const xmlNode* find(const std::string& id) const {
    const auto found = by_id_.find(id);
    return found == by_id_.end() ? nullptr : found->second;
  }

 private:
  std::unordered_map<std::string, xmlNode*> by_id_;
};

// Makes the first <file> of each id in the document a full definition, copying the source's
// where the document has only a reference there.
void define_files_where_first_used(xmlDoc* output, const FileDefinitions& definitions) {
  std::unordered_set<std::string> defined;
  for (xmlNode* file : xml::XPathQuery("//file").all(xml::as_node(output))) {
    const auto id = xml::attribute(file, "id");
    if (!id || !defined.insert(*id).second || file->children != nullptr) continue;
    const xmlNode* definition = definitions.find(*id);
    if (definition == nullptr) continue;  // defined nowhere: nothing to copy
    xmlNode* copy = xmlDocCopyNode(const_cast<xmlNode*>(definition), output, 1);
    if (copy == nullptr) throw std::bad_alloc();
    xmlReplaceNode(file, copy);
    xmlFreeNode(file);
  }
}

void give_titles_their_own(xmlNode* sequence, const std::vector<xmlNode*>& titles,
                           const ImportSafeRun& run) {
  xmlNode* rate = xml::first_child_element(sequence, "rate");
  const std::string ntsc = xml::text_content(xml::first_child_element(rate, "ntsc"));
  const std::string timebase = xml::text_content(xml::first_child_element(rate, "timebase"));
  for (std::size_t i = 0; i < titles.size(); ++i) {
    xmlNode* title = titles[i];
    const std::string id = std::string(kTitleId) + " " + std::to_string(i + 1);
    xmlSetProp(title, BAD_CAST "id", BAD_CAST id.c_str());
    set_child_text(title, "masterclipid", id);
    if (xmlNode* title_rate = xml::first_child_element(title, "rate")) {
      set_child_text(title_rate, "ntsc", ntsc);
      set_child_text(title_rate, "timebase", timebase);
    }
    set_child_text(xml::first_child_element(title, "itemhistory"), "uuid",
                   name_uuid(uuid_name(run, "title " + std::to_string(i + 1))));
  }
}

std::string describe(const xmlNode* element) {
  const std::string name = xml::text_content(xml::first_child_element(element, "name"));
  return "<" + std::string(reinterpret_cast<const char*>(element->name)) + "> \"" + name + "\"";
}

// Every element that still shares its id with an earlier one, files aside: a file reference is
// meant to repeat its definition's id.
std::vector<std::string> repeated_ids(xmlDoc* output) {
  std::vector<std::string> warnings;
  std::unordered_map<std::string, const xmlNode*> first;
  for (xmlNode* element : xml::XPathQuery("//*[@id][not(self::file)]").all(xml::as_node(output))) {
    const std::string id = *xml::attribute(element, "id");
    const auto [earlier, added] = first.emplace(id, element);
    if (added) continue;
    warnings.push_back("quillory: warning: the id \"" + id + "\" of " + describe(element) +
                       " repeats that of " + describe(earlier->second) +
                       "; importers will read the second as the first");
  }
  return warnings;
}

}  // namespace

std::vector<std::string> make_import_safe(xmlDoc* output, const std::vector<ClipRecord>& clips,
                                          const ImportSafeRun& run) {
  xmlNode* sequence = xml::XPathQuery("/xmeml/sequence").first(xml::as_node(output));
  if (sequence == nullptr) return {};
  set_child_text(sequence, "duration", std::to_string(run.duration));
  set_child_text(sequence, "uuid", name_uuid(uuid_name(run, "sequence")));
  give_titles_their_own(sequence, xml::XPathQuery("media/video/track[2]/generatoritem").all(sequence),
                        run);
  define_files_where_first_used(output, FileDefinitions(clips));
  return repeated_ids(output);
}

}  // namespace quillory
