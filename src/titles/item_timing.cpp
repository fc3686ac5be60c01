#include "titles/item_timing.h"

#include <algorithm>
#include <new>

#include "xml/failure.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

xmlNode* new_element(xmlNode* item, const char* name) {
  xmlNode* node = xmlNewDocNode(item->doc, nullptr, BAD_CAST name, nullptr);
  if (node == nullptr) throw std::bad_alloc();
  return node;
}

xmlNode* insert_start(xmlNode* item) {
  if (xmlNode* rate = xml::first_child_element(item, "rate")) {
    return xmlAddNextSibling(rate, new_element(item, "start"));
  }
  if (xmlNode* in = xml::first_child_element(item, "in")) {
    return xmlAddPrevSibling(in, new_element(item, "start"));
  }
  return xmlAddChild(item, new_element(item, "start"));
}

long long number(const xmlNode* item, const char* name) {
  return xml::leading_integer(xml::text_content(xml::first_child_element(item, name)));
}

bool has(const xmlNode* item, const char* name) {
  return xml::first_child_element(item, name) != nullptr;
}

}  // namespace

long long clip_length(const xmlNode* clip, const xmlNode* video_item, const xmlNode* audio_item,
                      const std::string& label, bool tolerant, std::vector<std::string>& made) {
  if (has(clip, "duration")) return number(clip, "duration");
  const xmlNode* item = video_item != nullptr ? video_item : audio_item;
  const std::string its = std::string("its ") + (video_item != nullptr ? "video" : "audio");
  long long length = 0;
  std::string measure = "no clip item to measure, length 0";
  if (item != nullptr && has(item, "duration")) {
    length = number(item, "duration");
    measure = "length " + std::to_string(length) + " from " + its + " clip item's <duration>";
  } else if (item != nullptr && has(item, "out") && has(item, "in") &&
             !__builtin_sub_overflow(number(item, "out"), number(item, "in"), &length)) {
    measure = "length " + std::to_string(length) + " from " + its + " clip item's <out> - <in>";
  } else if (item != nullptr) {
    length = 0;
    measure = its + " clip item has no <duration> or <in>/<out>, length 0";
  }
  assume_or_fail(tolerant, made, label + " has no <duration>", "no <duration>, " + measure);
  return length;
}

std::string check_item_timing(const xmlNode* item, const std::string& owner, bool tolerant) {
  const bool has_start = has(item, "start");
  const bool has_end = has(item, "end");
  if (has_start && has_end) return "";
  if (!tolerant) {
    throw IncompleteInput("quillory: " + owner + " has no " + (has_start ? "<end>" : "<start>") +
                          "; a placed clip item needs <start> and <end> (any value will do, as "
                          "both are rewritten)");
  }
  return has_start ? "<end>" : has_end ? "<start>" : "<start>/<end>";
}

void set_item_timing(xmlNode* item, const std::string& start, const std::string& end) {
  xmlNode* start_node = xml::first_child_element(item, "start");
  if (start_node == nullptr) start_node = insert_start(item);
  xmlNode* end_node = xml::first_child_element(item, "end");
  if (end_node == nullptr) end_node = xmlAddNextSibling(start_node, new_element(item, "end"));
  xml::set_text(start_node, start);
  xml::set_text(end_node, end);
}

void UntimedItems::add(const std::string& missing, std::size_t audio_number) {
  if (missing.empty()) return;
  auto group = std::find_if(groups_.begin(), groups_.end(),
                            [&missing](const Group& g) { return g.missing == missing; });
  if (group == groups_.end()) group = groups_.insert(groups_.end(), Group{missing, false, {}});
  if (audio_number == 0) {
    group->video = true;
  } else {
    group->audio.push_back(std::to_string(audio_number));
  }
}

void UntimedItems::describe(std::vector<std::string>& made) const {
  for (const auto& group : groups_) {
    std::string items = group.video ? "video clip item" : "";
    if (!group.audio.empty()) {
      items += std::string(items.empty() ? "" : " and ") + "audio clip item" +
               (group.audio.size() == 1 ? " " : "s ");
      for (std::size_t i = 0; i < group.audio.size(); ++i) {
        items += (i == 0 ? "" : ", ") + group.audio[i];
      }
    }
    const bool several = group.audio.size() + (group.video ? 1 : 0) > 1;
    made.push_back(items + (several ? " have no " : " has no ") + group.missing + ", added");
  }
}

}  // namespace quillory
