#include "import_view.h"

#include <unordered_map>

#include "test_support.h"
#include "xml/xml_nodes.h"

namespace quillory::test {
namespace {

using Index = std::unordered_map<std::string, xmlNode*>;

std::string text_at(const xmlNode* node, std::initializer_list<const char*> path) {
  return node ? xml::text_content(xml::first_element_at(node, path)) : "";
}

// An item's facts; its file named by `file`, the element that stands for its <file>.
std::string describe(const std::string& track, xmlNode* item, xmlNode* file) {
  return track + " " + reinterpret_cast<const char*>(item->name) + " " + text_at(item, {"name"}) +
         " " + text_at(item, {"start"}) + "-" + text_at(item, {"end"}) + " " +
         text_at(item, {"duration"}) + " rate " + text_at(item, {"rate", "timebase"}) + " file " +
         text_at(file, {"name"}) + " text " + text_at(item, {"effect", "parameter", "value"});
}

// What keeps an importer from reading the item, or "": OpenTimelineIO's stops at an item
// without <in> or <out>, and at a clip item without a <file>; one whose file gives no
// <pathurl> has no media to link (one holding a nested sequence needs none); an <out> before
// the <in> is a negative source range.
std::string unreadable(xmlNode* item, xmlNode* file) {
  std::string missing;
  for (const char* name : {"in", "out"}) {
    if (xml::first_child_element(item, name) == nullptr) missing += std::string(" <") + name + ">";
  }
  if (missing.empty() && xml::leading_integer(text_at(item, {"out"})) < xml::leading_integer(text_at(item, {"in"}))) {
    missing += " <out> after its <in>";
  }
  if (xmlStrEqual(item->name, BAD_CAST "clipitem") && text_at(file, {"pathurl"}).empty() &&
      xml::first_child_element(item, "sequence") == nullptr) {
    missing += " media file with a <pathurl>";
  }
  return missing.empty() ? "" : " unreadable, no" + missing;
}

xmlNode* first_of(const Index& index, xmlNode* element) {
  const auto id = element ? xml::attribute(element, "id") : std::nullopt;
  return id ? index.at(*id) : element;
}

}  // namespace

ImportView read_as_importers_do(const std::string& xml_text) {
  const xml::Document doc = parse(xml_text);
  xmlNode* root = xml::as_node(doc.get());
  Index first, defined;
  xml::walk_elements(root, [&](xmlNode* element) {
    const auto id = xml::attribute(element, "id");
    if (!id) return;
    first.emplace(*id, element);
    if (element->children != nullptr) defined.emplace(*id, element);
  });
  ImportView view;
  view.sequence_rate = text_at(root, {"xmeml", "sequence", "rate", "timebase"});
  // Editing programs guess the frame size and timecode of a sequence that states none; the
  // format is read only where it stands first in the video.
  const xmlNode* video = xml::first_element_at(root, {"xmeml", "sequence", "media", "video"});
  const xmlNode* format = video ? video->children : nullptr;
  while (format != nullptr && format->type != XML_ELEMENT_NODE) format = format->next;
  if (!xml::is_element(format, "format") || text_at(format, {"samplecharacteristics", "width"}).empty()) {
    view.as_resolved.push_back("sequence without a format first in its video");
  }
  if (text_at(root, {"xmeml", "sequence", "timecode", "string"}).empty()) {
    view.as_resolved.push_back("sequence without a timecode");
  }
  for (const char* kind : {"video", "audio"}) {
    const auto tracks = xml::elements_at(root, {"xmeml", "sequence", "media", kind, "track"});
    for (std::size_t t = 0; t < tracks.size(); ++t) {
      const std::string track = (kind[0] == 'v' ? "V" : "A") + std::to_string(t + 1);
      for (xmlNode* item = tracks[t]->children; item != nullptr; item = item->next) {
        if (!xml::is_element(item, "clipitem") && !xml::is_element(item, "generatoritem")) continue;
        xmlNode* file = xml::first_child_element(item, "file");
        const auto file_id = file ? xml::attribute(file, "id") : std::nullopt;
        xmlNode* definition = file_id && defined.count(*file_id) ? defined.at(*file_id) : file;
        view.as_written.push_back(describe(track, item, definition));
        xmlNode* resolved = first_of(first, item);
        xmlNode* resolved_file = first_of(first, xml::first_child_element(resolved, "file"));
        view.as_resolved.push_back(describe(track, resolved, resolved_file) +
                                   unreadable(resolved, resolved_file));
      }
    }
  }
  return view;
}

}  // namespace quillory::test
