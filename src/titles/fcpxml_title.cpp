#include "titles/fcpxml_title.h"

#include <cmath>
#include <cstring>
#include <new>

#include "source/fcpxml_time.h"
#include "titles/node_copies.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

constexpr const char* kAnchorItems[] = {"audio",   "video",    "clip",       "title",
                                        "caption", "mc-clip",  "ref-clip",   "sync-clip",
                                        "asset-clip", "audition", "spine",   "gap"};
constexpr const char* kMarkers[] = {"marker", "chapter-marker", "rating", "keyword",
                                    "analysis-marker"};

bool one_of(const xmlNode* node, const auto& names) {
  for (const char* name : names) {
    if (xml::is_element(node, name)) return true;
  }
  return false;
}

// What comes before anchored items in a clip item (or is one): its parameters, note, timing,
// adjustments and multicam sources.
bool before_or_anchored(const xmlNode* node) {
  if (one_of(node, kAnchorItems)) return true;
  if (std::strncmp(reinterpret_cast<const char*>(node->name), "adjust-", 7) == 0) return true;
  for (const char* name : {"param", "note", "conform-rate", "timeMap", "mc-source"}) {
    if (xml::is_element(node, name)) return true;
  }
  return false;
}

void append(xmlNode* parent, xml::Node child) {
  if (xmlAddChild(parent, child.get()) == nullptr) throw std::bad_alloc();
  child.release();
}

void set(xmlNode* element, const char* name, const std::string& value) {
  xmlSetProp(element, BAD_CAST name, BAD_CAST value.c_str());
}

}  // namespace

std::string fcpxml_title_text(const std::string& composed) {
  std::string text = composed;
  if (!text.empty() && text.back() == '\r') text.pop_back();
  for (char& c : text) {
    if (c == '\r') c = '\n';
  }
  return text;
}

std::string fcpxml_title_effect(const TitleTemplate& chosen, FcpxmlDocument& output) {
  if (chosen.xml != nullptr) return xml::attribute(chosen.xml, "ref").value_or("");
  // The source's own Basic Title, when it has one, is the one its titles already name.
  if (const xmlNode* effect = output.source_resources().find_effect_by_uid(kBasicTitleUid)) {
    return xml::attribute(effect, "id").value_or("");
  }
  return output.add_resource(new_fcpxml_element(output.get(), "effect",
                                                {{"name", "Basic Title"}, {"uid", kBasicTitleUid}}));
}

FcpxmlTitleMaker::FcpxmlTitleMaker(const TitleTemplate& chosen, std::string effect_id,
                                   int frame_height, FcpxmlIds& ids)
    : template_(chosen.xml), effect_id_(std::move(effect_id)), frame_height_(frame_height),
      ids_(ids) {}

xml::Node FcpxmlTitleMaker::make(xmlDoc* doc, const std::string& text,
                                 const FcpxmlTitlePlace& place) const {
  xml::Node title = new_fcpxml_element(doc, "title",
                                       {{"ref", effect_id_},
                                        {"lane", std::to_string(place.lane)},
                                        {"offset", fcpxml_time_text(place.offset)},
                                        {"name", "Quillory Card"},
                                        {"start", "3600s"},
                                        {"duration", fcpxml_time_text(place.duration)}});
  const std::string style_id = ids_.fresh("ts");
  xml::Node run = new_fcpxml_element(doc, "text-style");
  xml::Node shown_text = new_fcpxml_element(doc, "text");
  if (template_ == nullptr) {
    add_basic_title_look(title.get(), doc);
    set(run.get(), "ref", style_id);
    xmlNodeAddContent(run.get(), BAD_CAST text.c_str());
    append(shown_text.get(), std::move(run));
    append(title.get(), std::move(shown_text));
    xml::Node definition = new_fcpxml_element(doc, "text-style-def", {{"id", style_id}});
    const long font_size = std::lround(60.0 * frame_height_ / 1080);
    append(definition.get(), new_fcpxml_element(doc, "text-style",
                                                {{"font", "Lucida Grande"},
                                                 {"fontSize", std::to_string(font_size)},
                                                 {"fontFace", "Regular"},
                                                 {"fontColor", "0.8 0.8 0.8 1"},
                                                 {"alignment", "center"}}));
    append(title.get(), std::move(definition));
    return title;
  }
  // A copy of the template: its other attributes after those set above, its parameters, the
  // new text, a copy of its first text style, and what it holds beside anchored items and
  // markers.
  for (const xmlAttr* attribute = template_->properties; attribute != nullptr; attribute = attribute->next) {
    const char* name = reinterpret_cast<const char*>(attribute->name);
    if (xmlHasProp(title.get(), attribute->name) != nullptr) continue;
    set(title.get(), name, xml::attribute(template_, name).value_or(""));
  }
  const xmlNode* first_style = xml::first_child_element(template_, "text-style-def");
  for (const xmlNode* child = template_->children; child != nullptr; child = child->next) {
    if (xml::is_element(child, "param")) append(title.get(), clean_copy(child, doc));
  }
  if (first_style != nullptr) set(run.get(), "ref", style_id);
  xmlNodeAddContent(run.get(), BAD_CAST text.c_str());
  append(shown_text.get(), std::move(run));
  append(title.get(), std::move(shown_text));
  if (first_style != nullptr) {
    xml::Node definition = clean_copy(first_style, doc);
    set(definition.get(), "id", style_id);
    append(title.get(), std::move(definition));
  }
  for (const xmlNode* child = template_->children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE || one_of(child, kAnchorItems) || one_of(child, kMarkers)) continue;
    if (xml::is_element(child, "param") || xml::is_element(child, "text") ||
        xml::is_element(child, "text-style-def")) {
      continue;
    }
    append(title.get(), clean_copy(child, doc));
  }
  return title;
}

void FcpxmlTitleMaker::add_basic_title_look(xmlNode* title, xmlDoc* doc) const {
  const long y = std::lround(0.13 * frame_height_);
  append(title, new_fcpxml_element(doc, "param",
                                   {{"name", "Position"},
                                    {"key", "9999/999166631/999166633/1/100/101"},
                                    {"value", "0 -" + std::to_string(y)}}));
}

xmlNode* anchor_item(xmlNode* parent, xml::Node item) {
  xmlNode* next = parent->children;
  while (next != nullptr && (next->type != XML_ELEMENT_NODE || before_or_anchored(next))) {
    next = next->next;
  }
  xmlNode* placed = next != nullptr ? xmlAddPrevSibling(next, item.get()) : xmlAddChild(parent, item.get());
  if (placed == nullptr) throw std::bad_alloc();
  item.release();
  return placed;
}

}  // namespace quillory
