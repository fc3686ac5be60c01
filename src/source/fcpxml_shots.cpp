#include "source/fcpxml_shots.h"

#include <algorithm>
#include <charconv>
#include <functional>
#include <set>
#include <utility>

#include "source/fcpxml_clip_facts.h"
#include "source/fcpxml_time.h"
#include "source/topmost_runs.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

const RationalTime k_zero(0, TimeScale(1, 1));

long long lane_of(const xmlNode* element) {
  const std::optional<std::string> text = xml::attribute(element, "lane");
  long long lane = 0;
  if (text) std::from_chars(text->data(), text->data() + text->size(), lane);
  return lane;
}

bool enabled(const xmlNode* element) {
  const std::optional<std::string> text = xml::attribute(element, "enabled");
  return !text || *text == "1";
}

RationalTime time_of(const xmlNode* element, const char* name) {
  return fcpxml_time_attribute(element, name);
}

// Where an item begins in its parent's local time: an audition's pick stands in the audition's
// place, which the audition states unless only its pick does.
RationalTime offset_of(const xmlNode* item) {
  if (xml::is_element(item, "audition") && !xml::attribute(item, "offset")) {
    return time_of(fcpxml_audition_pick(item), "offset");
  }
  return time_of(item, "offset");
}

// The place on the grandparent's timeline of a child at `offset` in a parent that lies at
// `parent_place` and whose local time starts at `parent_start`.
RationalTime placed(const RationalTime& parent_place, const RationalTime& parent_start,
                    const RationalTime& offset) {
  return parent_place + (offset - parent_start);
}

// Whole frames of `frame_duration` in `time`, counted up: the first frame that starts at or
// after `time`.
long long frames_up(const RationalTime& time, const RationalTime& frame_duration) {
  // time = v·s/u seconds, a frame fv·fs/fu seconds: v·s·fu / (u·fv·fs) frames.
  const WideCount numerator = static_cast<WideCount>(time.value()) * time.scale().seconds() *
                              frame_duration.scale().units();
  const WideCount denominator = static_cast<WideCount>(time.scale().units()) *
                                frame_duration.value() * frame_duration.scale().seconds();
  WideCount quotient = numerator / denominator;
  if (numerator % denominator != 0 && numerator > 0) ++quotient;
  return static_cast<long long>(quotient);
}

bool is_anchored_item(const xmlNode* element) {
  for (const char* name : {"audio", "video", "clip", "title", "caption", "mc-clip", "ref-clip",
                           "sync-clip", "asset-clip", "audition", "spine", "live-drawing"}) {
    if (xml::is_element(element, name)) return true;
  }
  return false;
}

// Visits every item of the timeline below `spine` (lying at `place` on `lane`) with where it
// lies: an anchored item at its own lane, a storyline's items at the storyline's, an audition
// as its pick. `on` tells whether it and all that holds it are enabled.
using Visit = std::function<void(const xmlNode* item, const RationalTime& place, long long lane,
                                 bool on)>;

void walk_item(const xmlNode* item, const RationalTime& place, long long lane, bool on,
               const Visit& visit);

void walk_storyline(const xmlNode* spine, const RationalTime& place, long long lane, bool on,
                    const Visit& visit) {
  const RationalTime start = time_of(spine, "start");
  for (const xmlNode* child = spine->children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE || xml::is_element(child, "transition")) continue;
    walk_item(child, placed(place, start, offset_of(child)), lane, on, visit);
  }
}

void walk_item(const xmlNode* item, const RationalTime& place, long long lane, bool on,
               const Visit& visit) {
  on = on && enabled(item);
  item = fcpxml_audition_pick(item);
  on = on && enabled(item);
  visit(item, place, lane, on);
  const RationalTime start = time_of(item, "start");
  for (const xmlNode* child = item->children; child != nullptr; child = child->next) {
    if (!is_anchored_item(child) || lane_of(child) == 0) continue;
    const RationalTime child_place = placed(place, start, offset_of(child));
    if (xml::is_element(child, "spine")) {
      walk_storyline(child, child_place, lane_of(child), on && enabled(child), visit);
    } else {
      walk_item(child, child_place, lane_of(child), on, visit);
    }
  }
}

void walk_sequence(const xmlNode* sequence, const Visit& visit) {
  const xmlNode* spine = xml::first_child_element(sequence, "spine");
  if (spine != nullptr) walk_storyline(spine, k_zero, 0, true, visit);
}

// A clip item that may be the picture seen, and the frames it covers.
struct Candidate {
  const xmlNode* item = nullptr;
  RationalTime place;  // where its local start lies on the sequence's timeline
  long long lane = 0;
  std::size_t order = 0;  // document order
  long long first = 0, end = 0;
};

// The candidates' pictures stacked by lane (then by document order): `shot` gets each run of
// frames over which one candidate is the picture seen.
template <typename Shot>
void sweep(const std::vector<Candidate>& items, Shot shot) {
  std::vector<StackedPicture> pictures;
  pictures.reserve(items.size());
  for (const Candidate& item : items) pictures.push_back({item.first, item.end, item.lane, item.order});
  topmost_runs(pictures, [&](std::size_t i, long long first, long long end) { shot(items[i], first, end); });
}

// The primary storyline's items (transitions aside) by place, for anchoring titles.
struct Anchor {
  RationalTime place;
  const xmlNode* item;
};

std::vector<Anchor> primary_items(const xmlNode* sequence) {
  std::vector<Anchor> anchors;
  const xmlNode* spine = xml::first_child_element(sequence, "spine");
  if (spine == nullptr) return anchors;
  const RationalTime start = time_of(spine, "start");
  for (const xmlNode* child = spine->children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE || xml::is_element(child, "transition")) continue;
    anchors.push_back({placed(k_zero, start, offset_of(child)), fcpxml_audition_pick(child)});
  }
  std::ranges::stable_sort(anchors, {}, &Anchor::place);
  return anchors;
}

// The item over `time`: the last that begins at or before it (the first when none does).
const Anchor* anchor_at(const std::vector<Anchor>& anchors, const RationalTime& time) {
  if (anchors.empty()) return nullptr;
  const auto after = std::ranges::upper_bound(anchors, time, {}, &Anchor::place);
  return after == anchors.begin() ? &anchors.front() : &*(after - 1);
}

}  // namespace

std::vector<FcpxmlShot> fcpxml_shots(const xmlNode* sequence, const FcpxmlResources& resources) {
  std::vector<FcpxmlShot> shots;
  const auto frame_duration =
      resources.frame_duration(xml::attribute(sequence, "format").value_or(""));
  if (!frame_duration) return shots;
  const RationalTime tc_start = time_of(sequence, "tcStart");
  std::vector<Candidate> candidates;
  std::size_t order = 0;
  walk_sequence(sequence, [&](const xmlNode* item, const RationalTime& place, long long lane, bool on) {
    ++order;
    if (!on || !is_fcpxml_clip_item(item, resources)) return;
    const xmlNode* media = fcpxml_media_point(item, time_of(item, "start"), resources).media_item;
    if (!fcpxml_shows_picture(item, media, resources)) return;
    candidates.push_back({item, place, lane, order,
                          frames_up(place - tc_start, *frame_duration),
                          frames_up(place + time_of(item, "duration") - tc_start, *frame_duration)});
  });
  const std::vector<Anchor> anchors = primary_items(sequence);
  const TimeScale frames = scale_counting(*frame_duration);
  sweep(candidates, [&](const Candidate& seen, long long first, long long end) {
    FcpxmlShot shot;
    shot.item = seen.item;
    shot.first_frame = first;
    shot.length = end - first;
    const RationalTime instant = tc_start + RationalTime(first, frames);
    shot.item_time = time_of(seen.item, "start") + (instant - seen.place);
    if (const Anchor* anchor = anchor_at(anchors, instant)) {
      shot.anchor = anchor->item;
      shot.anchor_time = time_of(anchor->item, "start") + (instant - anchor->place);
    }
    shots.push_back(shot);
  });
  return shots;
}

std::size_t fcpxml_lanes_used(const xmlNode* sequence) {
  std::set<long long> lanes;
  walk_sequence(sequence, [&lanes](const xmlNode*, const RationalTime&, long long lane, bool) {
    if (lane >= 0) lanes.insert(lane);
  });
  return lanes.size();
}

long long fcpxml_title_lane(const xmlNode* sequence) {
  long long highest = 0;
  xml::walk_elements(sequence, [&highest](xmlNode* element) {
    highest = std::max(highest, lane_of(element));
  });
  return highest + 1;
}

}  // namespace quillory
