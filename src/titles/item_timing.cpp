#include "titles/item_timing.h"

#include <new>

#include "source/incomplete_input.h"
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

// Which of the elements `first` and `second` the item lacks: "<first>", "<second>",
// "<first>/<second>", or "" when it has both.
std::string missing_of(const xmlNode* item, const char* first, const char* second) {
  const bool has_first = has(item, first);
  const bool has_second = has(item, second);
  if (has_first && has_second) return "";
  if (has_first) return std::string("<") + second + ">";
  if (has_second) return std::string("<") + first + ">";
  return std::string("<") + first + ">/<" + second + ">";
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

std::string odd_duration(const xmlNode* clip) {
  const xmlNode* duration = xml::first_child_element(clip, "duration");
  if (duration == nullptr) return "";
  const std::string text = xml::text_content(duration);
  const std::string_view digits = xml::trim_blanks(text);
  const std::size_t sign = !digits.empty() && (digits[0] == '-' || digits[0] == '+') ? 1 : 0;
  const bool whole = digits.size() > sign &&
                     digits.find_first_not_of("0123456789", sign) == std::string_view::npos;
  const long long frames = xml::leading_integer(text);
  const std::string reads = "<duration> \"" + shown(text) + "\" ";
  if (!whole) return reads + "is not a whole number, placed as " + std::to_string(frames) + " frames";
  if (frames < 0) return reads + "is negative, so the clip ends before it starts";
  return "";
}

std::string check_item_timing(const xmlNode* item, const std::string& owner, bool tolerant) {
  const std::string missing = missing_of(item, "start", "end");
  if (missing.empty() || tolerant) return missing;
  const char* first_missing = has(item, "start") ? "<end>" : "<start>";
  throw IncompleteInput("quillory: " + owner + " has no " + first_missing +
                        "; a placed clip item needs <start> and <end> (any value will do, as "
                        "both are rewritten)");
}

void set_item_timing(xmlNode* item, const TimeRange& place) {
  xmlNode* start_node = xml::first_child_element(item, "start");
  if (start_node == nullptr) start_node = insert_start(item);
  xmlNode* end_node = xml::first_child_element(item, "end");
  if (end_node == nullptr) end_node = xmlAddNextSibling(start_node, new_element(item, "end"));
  xml::set_text(start_node, std::to_string(place.start.value()));
  xml::set_text(end_node, std::to_string(place.end().value()));
}

std::string missing_source_range(const xmlNode* item) {
  return missing_of(item, "in", "out");
}

void add_source_range(xmlNode* item, const RationalTime& length) {
  xmlNode* last = xml::first_child_element(item, "end");  // what an added element follows
  if (!has(item, "in")) {
    last = xmlAddNextSibling(last, new_element(item, "in"));
    xml::set_text(last, "0");
  }
  if (!has(item, "out")) xml::set_text(xmlAddNextSibling(last, new_element(item, "out")), std::to_string(length.value()));
}

}  // namespace quillory
