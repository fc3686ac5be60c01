#include "source/fcpxml_clip_facts.h"

#include <cmath>
#include <cstring>

#include "source/date_time.h"
#include "source/fcpxml_time.h"
#include "source/timecode.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

constexpr const char* kReelKey = "com.apple.proapps.studio.reel";
constexpr const char* kSceneKey = "com.apple.proapps.studio.scene";
constexpr const char* kTakeKey = "com.apple.proapps.studio.shot";
constexpr const char* kRecordedKey = "com.apple.proapps.studio.metadataContentCreated";

bool named(const xmlNode* node, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    if (xml::is_element(node, name)) return true;
  }
  return false;
}

// Contained rather than anchored: no lane, or lane 0.
bool contained(const xmlNode* child) {
  const auto lane = xml::attribute(child, "lane");
  return !lane || *lane == "0";
}

// The time on `child`'s own timeline of `parent_time` on its parent's.
RationalTime into_child(const xmlNode* child, const RationalTime& parent_time) {
  return fcpxml_time_attribute(child, "start") +
         (parent_time - fcpxml_time_attribute(child, "offset"));
}

// The `value` of the <md> of `key` in the element's <metadata>; none without one.
std::optional<std::string> metadata_value(const xmlNode* element, const char* key) {
  if (element == nullptr) return std::nullopt;
  for (const xmlNode* md : xml::elements_at(element, {"metadata", "md"})) {
    if (xml::attribute(md, "key") == key) return xml::attribute(md, "value");
  }
  return std::nullopt;
}

// The item's own fact, else the clip item's; "" without either.
std::string fact(const xmlNode* item, const xmlNode* clip_item, const char* key) {
  if (auto value = metadata_value(item, key)) return *value;
  return metadata_value(clip_item, key).value_or("");
}

std::optional<std::string> note(const xmlNode* element) {
  const xmlNode* node = xml::first_child_element(element, "note");
  if (node == nullptr) return std::nullopt;
  return xml::text_content(node);
}

FcpxmlMediaPoint container_point(const xmlNode* container, const RationalTime& local_time,
                                 const FcpxmlResources& resources);

// The multicam angle's item under `time`, the multicam's own time, through the angle whose
// picture the clip shows.
FcpxmlMediaPoint angle_point(const xmlNode* mc_clip, const RationalTime& time,
                             const FcpxmlResources& resources) {
  const xmlNode* media = resources.find(xml::attribute(mc_clip, "ref").value_or(""), "media");
  const xmlNode* multicam = media != nullptr ? xml::first_child_element(media, "multicam") : nullptr;
  std::optional<std::string> angle_id;
  for (const xmlNode* source : xml::elements_at(mc_clip, {"mc-source"})) {
    const std::string enabled = xml::attribute(source, "srcEnable").value_or("all");
    if (enabled == "all" || enabled == "video") {
      angle_id = xml::attribute(source, "angleID");
      break;
    }
  }
  if (multicam == nullptr || !angle_id) return {};
  for (const xmlNode* angle : xml::elements_at(multicam, {"mc-angle"})) {
    if (xml::attribute(angle, "angleID") != angle_id) continue;
    for (const xmlNode* item = angle->children; item != nullptr; item = item->next) {
      // A transition overlaps the items it joins, which meet at its cut point.
      if (item->type != XML_ELEMENT_NODE || xml::is_element(item, "transition")) continue;
      const RationalTime offset = fcpxml_time_attribute(item, "offset");
      if (time < offset || offset + fcpxml_time_attribute(item, "duration") <= time) continue;
      return fcpxml_media_point(item, into_child(item, time), resources);
    }
    break;
  }
  return {};
}

// A clip, sync-clip or storyline: the media of its first contained item that shows a
// picture, else of its first contained item with media.
FcpxmlMediaPoint container_point(const xmlNode* container, const RationalTime& local_time,
                                 const FcpxmlResources& resources) {
  FcpxmlMediaPoint first;
  for (const xmlNode* child = container->children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE || !contained(child)) continue;
    if (!xml::is_element(child, "spine") && !is_fcpxml_clip_item(child, resources)) continue;
    const FcpxmlMediaPoint point =
        fcpxml_media_point(child, into_child(child, local_time), resources);
    if (point.media_item == nullptr) continue;
    if (asset_has_video(fcpxml_media_asset(point.media_item, resources))) return point;
    if (first.media_item == nullptr) first = point;
  }
  return first;
}

}  // namespace

bool is_fcpxml_clip_item(const xmlNode* node, const FcpxmlResources& resources) {
  if (named(node, {"asset-clip", "clip", "sync-clip", "mc-clip", "ref-clip", "audition"})) {
    return true;
  }
  return xml::is_element(node, "video") &&
         resources.find(xml::attribute(node, "ref").value_or(""), "asset") != nullptr;
}

const xmlNode* fcpxml_audition_pick(const xmlNode* item) {
  while (xml::is_element(item, "audition")) {
    const xmlNode* child = item->children;
    while (child != nullptr && child->type != XML_ELEMENT_NODE) child = child->next;
    if (child == nullptr) return item;
    item = child;
  }
  return item;
}

FcpxmlMediaPoint fcpxml_media_point(const xmlNode* clip_item, const RationalTime& local_time,
                                    const FcpxmlResources& resources) {
  const xmlNode* item = fcpxml_audition_pick(clip_item);
  if (item != clip_item) return fcpxml_media_point(item, local_time, resources);
  if (xml::is_element(item, "asset-clip") ||
      (xml::is_element(item, "video") && fcpxml_media_asset(item, resources) != nullptr)) {
    return {item, local_time};
  }
  if (named(item, {"clip", "sync-clip", "spine"})) return container_point(item, local_time, resources);
  if (xml::is_element(item, "mc-clip")) return angle_point(item, local_time, resources);
  return {};
}

const xmlNode* fcpxml_media_asset(const xmlNode* media_item, const FcpxmlResources& resources) {
  if (media_item == nullptr) return nullptr;
  return resources.find(xml::attribute(media_item, "ref").value_or(""), "asset");
}

const xmlNode* fcpxml_clip_format(const xmlNode* clip_item, const xmlNode* media_item,
                                  const FcpxmlResources& resources) {
  const xmlNode* item = fcpxml_audition_pick(clip_item);
  std::optional<std::string> own = xml::attribute(item, "format");
  if (named(item, {"mc-clip", "ref-clip"})) {
    // A multicam or compound clip runs at the format of the media it names.
    const xmlNode* media = resources.find(xml::attribute(item, "ref").value_or(""), "media");
    for (const xmlNode* child = media != nullptr ? media->children : nullptr; child != nullptr;
         child = child->next) {
      if (named(child, {"multicam", "sequence"})) own = xml::attribute(child, "format");
    }
  }
  if (own) {
    if (const xmlNode* format = resources.find(*own, "format")) return format;
  }
  const xmlNode* asset = fcpxml_media_asset(media_item, resources);
  return resources.find(xml::attribute(asset, "format").value_or(""), "format");
}

bool fcpxml_shows_picture(const xmlNode* clip_item, const xmlNode* media_item,
                          const FcpxmlResources& resources) {
  const xmlNode* item = fcpxml_audition_pick(clip_item);
  if (xml::attribute(item, "srcEnable") == "audio") return false;
  if (xml::is_element(item, "ref-clip")) return true;
  return asset_has_video(fcpxml_media_asset(media_item, resources));
}

std::string fcpxml_timecode(const RationalTime& source_time, const RationalTime& frame_duration,
                            bool drop_frame) {
  const TimeScale frames = scale_counting(frame_duration);
  const std::optional<RateRecord> row = find_frame_rate_by_duration(frame_duration);
  TimecodeFormat format;
  format.timebase = row ? row->rate.timebase() : static_cast<int>(std::llround(frames.per_second()));
  format.drop_frame = drop_frame && row && row->frame_rate().drop_frame();
  format.wrap_at_24_hours = false;
  // A frame is counted from its first instant: half-way between two rounds to the later.
  const RationalTime at = source_time.rescaled_to(frames);
  return format_timecode(at.value(), format);
}

ClipRecord fcpxml_clip_record(const xmlNode* clip_item, const RationalTime& first_frame,
                              const FcpxmlResources& resources) {
  const xmlNode* picked = fcpxml_audition_pick(clip_item);
  const FcpxmlMediaPoint point = fcpxml_media_point(picked, first_frame, resources);
  const xmlNode* item = point.media_item != nullptr ? point.media_item : picked;
  const xmlNode* asset = fcpxml_media_asset(point.media_item, resources);
  ClipRecord record;
  record.clip_name = xml::attribute(item, "name")
                         .value_or(xml::attribute(picked, "name").value_or(""));
  record.file_name = asset_media_file_name(asset);
  record.path_url = asset_media_url(asset);
  record.reel = fact(item, picked, kReelKey);
  record.scene = fact(item, picked, kSceneKey);
  record.shottake = fact(item, picked, kTakeKey);
  record.lognote = note(item).value_or(note(picked).value_or(""));
  if (const auto recorded = metadata_value(asset, kRecordedKey)) {
    record.time = parse_date_time(*recorded);
  }
  const auto frame_duration =
      resources.frame_duration(xml::attribute(asset, "format").value_or(""));
  if (asset != nullptr && frame_duration) {
    const auto tc_format = xml::attribute(item, "tcFormat");
    const bool drop = tc_format ? *tc_format == "DF" : xml::attribute(picked, "tcFormat") == "DF";
    record.frame_string = fcpxml_timecode(point.source_time, *frame_duration, drop);
  }
  record.xml = const_cast<xmlNode*>(clip_item);
  return record;
}

bool fcpxml_retimed(const xmlNode* clip_item) {
  if (xml::first_descendant(clip_item, "timeMap") != nullptr) return true;
  bool scaled = false;
  xml::walk_elements(clip_item, [&scaled](xmlNode* element) {
    if (xml::is_element(element, "conform-rate") &&
        xml::attribute(element, "scaleEnabled") != "0") {
      scaled = true;
    }
  });
  return scaled;
}

}  // namespace quillory
