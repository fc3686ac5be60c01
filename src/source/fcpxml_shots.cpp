#include "source/fcpxml_shots.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <unordered_map>
#include <utility>

#include "source/fcpxml_time.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

const RationalTime k_zero(0, TimeScale(1, 1));

bool named(const xmlNode* element, std::initializer_list<const char*> names) {
  return std::ranges::any_of(names, [element](const char* name) { return xml::is_element(element, name); });
}

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

const xmlNode* first_element_child(const xmlNode* element) {
  for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE) return child;
  }
  return nullptr;
}

// An audition plays its first child, its active pick; any other item plays itself.
const xmlNode* active(const xmlNode* item) {
  if (!xml::is_element(item, "audition")) return item;
  const xmlNode* pick = first_element_child(item);
  return pick != nullptr ? pick : item;
}

// Where an item begins in its parent's local time: an audition's pick stands in the audition's
// place, which the audition states unless only its pick does.
RationalTime offset_of(const xmlNode* item) {
  if (xml::is_element(item, "audition") && !xml::attribute(item, "offset")) {
    return time_of(active(item), "offset");
  }
  return time_of(item, "offset");
}

// The place on the grandparent's timeline of a child at `offset` in a parent that lies at
// `parent_place` and whose local time starts at `parent_start`.
RationalTime placed(const RationalTime& parent_place, const RationalTime& parent_start,
                    const RationalTime& offset) {
  return parent_place + (offset - parent_start);
}

const xmlNode* referenced(const xmlNode* item, const FcpxmlResources& resources,
                          const char* element) {
  const std::optional<std::string> ref = xml::attribute(item, "ref");
  return ref ? resources.find(*ref, element) : nullptr;
}

// Whole frames of `frame_duration` in `time`, counted up to the next whole one: the first
// frame that starts at or after `time`.
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

TimeScale frames_per_second(const RationalTime& frame_duration) {
  return {frame_duration.scale().units(), frame_duration.value() * frame_duration.scale().seconds()};
}

// Finds what a clip item shows. A container's media item is fixed (its first contained item
// with media showing a picture, else its first with media), so it is looked up once per
// container; a multicam angle is searched by time, its items sorted once per angle.
class MediaFinder {
 public:
  explicit MediaFinder(const FcpxmlResources& resources) : resources_(resources) {}

  std::optional<MediaPoint> at(const xmlNode* item, const RationalTime& local_time) {
    item = active(item);
    if (own_media(item)) return MediaPoint{item, local_time};
    if (xml::is_element(item, "mc-clip")) {
      const Angle* angle = video_angle(item);
      if (angle == nullptr) return std::nullopt;
      const auto after = std::ranges::upper_bound(angle->items, local_time, {}, &AngleItem::offset);
      if (after == angle->items.begin()) return std::nullopt;
      const AngleItem& covering = *(after - 1);
      if (!(local_time < covering.offset + time_of(active(covering.item), "duration"))) {
        return std::nullopt;
      }
      return at(covering.item, carried(covering.item, covering.offset, local_time));
    }
    if (named(item, {"clip", "sync-clip"})) {
      const Contained& contained = contents(item);
      if (contained.item == nullptr) return std::nullopt;
      RationalTime time = local_time;
      if (contained.spine != nullptr) time = carried(contained.spine, time_of(contained.spine, "offset"), time);
      return at(contained.item, carried(contained.item, offset_of(contained.item), time));
    }
    return std::nullopt;  // a compound clip, or no clip item at all
  }

  // Whether the item shows a picture: its media has video (a compound clip always does), and
  // it is not set to play its sound only.
  bool shows_picture(const xmlNode* item) {
    item = active(item);
    if (xml::attribute(item, "srcEnable") == "audio") return false;
    if (xml::is_element(item, "ref-clip")) return true;
    if (own_media(item)) return asset_has_video(referenced(item, resources_, "asset"));
    if (xml::is_element(item, "mc-clip")) return video_angle(item) != nullptr;
    if (named(item, {"clip", "sync-clip"})) return contents(item).shows_picture;
    return false;
  }

  bool has_media(const xmlNode* item) {
    item = active(item);
    if (own_media(item)) return true;
    if (xml::is_element(item, "mc-clip")) return video_angle(item) != nullptr;
    if (named(item, {"clip", "sync-clip"})) return contents(item).item != nullptr;
    return false;
  }

  bool own_media(const xmlNode* item) const {
    return named(item, {"asset-clip", "video"}) && referenced(item, resources_, "asset") != nullptr;
  }

 private:
  struct AngleItem {
    RationalTime offset;
    const xmlNode* item;
  };
  struct Angle {
    std::vector<AngleItem> items;  // by offset
  };
  struct Contained {
    const xmlNode* item = nullptr;   // the contained item the container shows
    const xmlNode* spine = nullptr;  // the storyline it lies in inside the container, if any
    bool shows_picture = false;
  };

  // A time of the parent's local timeline carried into the child's, which begins at `offset`.
  static RationalTime carried(const xmlNode* child, const RationalTime& offset,
                              const RationalTime& parent_time) {
    return time_of(active(child), "start") + (parent_time - offset);
  }

  const Contained& contents(const xmlNode* container) {
    if (const auto found = contained_.find(container); found != contained_.end()) return found->second;
    Contained chosen;
    Contained first;
    const auto consider = [&](const xmlNode* child, const xmlNode* spine) {
      if (chosen.item != nullptr || lane_of(child) != 0 || !has_media(child)) return;
      const Contained candidate{child, spine, shows_picture(child)};
      if (candidate.shows_picture) chosen = candidate;
      if (first.item == nullptr) first = candidate;
    };
    for (const xmlNode* child = container->children; child != nullptr; child = child->next) {
      if (xml::is_element(child, "spine") && lane_of(child) == 0) {
        for (const xmlNode* inner = child->children; inner != nullptr; inner = inner->next) {
          if (inner->type == XML_ELEMENT_NODE) consider(inner, child);
        }
      } else if (child->type == XML_ELEMENT_NODE) {
        consider(child, nullptr);
      }
    }
    return contained_.emplace(container, chosen.item != nullptr ? chosen : first).first->second;
  }

  // The angle of the multicam clip's first source that plays video.
  const Angle* video_angle(const xmlNode* mc_clip) {
    std::string angle_id;
    const xmlNode* first_angle_source = nullptr;
    for (const xmlNode* source : xml::elements_at(mc_clip, {"mc-source"})) {
      const std::string enabled_part = xml::attribute(source, "srcEnable").value_or("all");
      if (enabled_part == "all" || enabled_part == "video") {
        first_angle_source = source;
        angle_id = xml::attribute(source, "angleID").value_or("");
        break;
      }
    }
    if (first_angle_source == nullptr) return nullptr;
    const xmlNode* multicam =
        xml::first_child_element(referenced(mc_clip, resources_, "media"), "multicam");
    for (const xmlNode* angle : xml::elements_at(multicam, {"mc-angle"})) {
      if (xml::attribute(angle, "angleID") == angle_id) return &indexed(angle);
    }
    return nullptr;
  }

  const Angle& indexed(const xmlNode* angle) {
    if (const auto found = angles_.find(angle); found != angles_.end()) return found->second;
    Angle index;
    for (const xmlNode* child = angle->children; child != nullptr; child = child->next) {
      if (child->type != XML_ELEMENT_NODE || xml::is_element(child, "transition")) continue;
      index.items.push_back({offset_of(child), child});
    }
    std::ranges::stable_sort(index.items, {}, &AngleItem::offset);
    return angles_.emplace(angle, std::move(index)).first->second;
  }

  const FcpxmlResources& resources_;
  std::unordered_map<const xmlNode*, Contained> contained_;
  std::unordered_map<const xmlNode*, Angle> angles_;
};

// One item of the flattened timeline: where its local start lies on the sequence's timeline.
struct Placed {
  const xmlNode* item = nullptr;  // an audition's pick
  RationalTime place;
  long long lane = 0;
  std::size_t order = 0;  // document order
  long long first = 0, end = 0;  // frames from tcStart
};

bool is_anchored_item(const xmlNode* element) {
  return named(element, {"audio", "video", "clip", "title", "caption", "mc-clip", "ref-clip",
                         "sync-clip", "asset-clip", "audition", "spine", "live-drawing"});
}

// Walks the sequence's timeline, collecting the clip items that can be the picture seen and
// the lanes that items stand on.
class Flattener {
 public:
  Flattener(const FcpxmlResources& resources, MediaFinder& media)
      : resources_(resources), media_(media) {}

  void storyline(const xmlNode* spine, const RationalTime& place, long long lane, bool on) {
    const RationalTime start = time_of(spine, "start");
    for (const xmlNode* child = spine->children; child != nullptr; child = child->next) {
      if (child->type != XML_ELEMENT_NODE || xml::is_element(child, "transition")) continue;
      item(child, placed(place, start, offset_of(child)), lane, on);
    }
  }

  // `element` lies at `place` (audition or not), on `lane`; `on` tells whether all that
  // contains it is enabled.
  void item(const xmlNode* element, const RationalTime& place, long long lane, bool on) {
    on = on && enabled(element);
    element = active(element);
    on = on && enabled(element);
    lanes.insert(lane);
    const std::size_t order = next_order_++;
    if (on && is_fcpxml_clip_item(element, resources_) && media_.shows_picture(element)) {
      seen.push_back({element, place, lane, order, 0, 0});
    }
    const RationalTime start = time_of(element, "start");
    for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
      if (!is_anchored_item(child) || lane_of(child) == 0) continue;
      const RationalTime child_place = placed(place, start, offset_of(child));
      if (xml::is_element(child, "spine")) {
        lanes.insert(lane_of(child));
        storyline(child, child_place, lane_of(child), on && enabled(child));
      } else {
        item(child, child_place, lane_of(child), on);
      }
    }
  }

  std::vector<Placed> seen;
  std::set<long long> lanes;

 private:
  const FcpxmlResources& resources_;
  MediaFinder& media_;
  std::size_t next_order_ = 0;
};

// Sweeps the items' bounds in frame order, keeping the items under way ordered by lane, then
// document order: the topmost is the picture seen until the next bound.
template <typename Shot>
void sweep(const std::vector<Placed>& items, Shot shot) {
  struct Event {
    long long frame;
    bool starts;
    std::size_t item;
  };
  std::vector<Event> events;
  events.reserve(items.size() * 2);
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (items[i].first >= items[i].end) continue;
    events.push_back({items[i].first, true, i});
    events.push_back({items[i].end, false, i});
  }
  std::ranges::sort(events, {}, &Event::frame);
  const auto lower = [&](std::size_t a, std::size_t b) {
    return std::pair(items[a].lane, items[a].order) < std::pair(items[b].lane, items[b].order);
  };
  std::set<std::size_t, decltype(lower)> under_way(lower);
  std::optional<std::size_t> seen;
  long long since = 0;
  for (std::size_t i = 0; i < events.size();) {
    const long long frame = events[i].frame;
    for (; i < events.size() && events[i].frame == frame; ++i) {
      if (events[i].starts) {
        under_way.insert(events[i].item);
      } else {
        under_way.erase(events[i].item);
      }
    }
    const std::optional<std::size_t> top =
        under_way.empty() ? std::nullopt : std::optional(*under_way.rbegin());
    if (top == seen) continue;
    if (seen) shot(items[*seen], since, frame);
    seen = top;
    since = frame;
  }
}

// The primary storyline's items (transitions aside), by place, for anchoring titles.
struct Anchor {
  RationalTime place;
  const xmlNode* item;
};

std::vector<Anchor> primary_items(const xmlNode* spine) {
  std::vector<Anchor> anchors;
  const RationalTime start = time_of(spine, "start");
  for (const xmlNode* child = spine->children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE || xml::is_element(child, "transition")) continue;
    anchors.push_back({placed(k_zero, start, offset_of(child)), active(child)});
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

long long highest_lane(const xmlNode* sequence) {
  long long highest = 0;
  xml::walk_elements(sequence, [&highest](xmlNode* element) {
    highest = std::max(highest, lane_of(element));
  });
  return highest;
}

struct Timeline {
  std::vector<Placed> seen;
  std::set<long long> lanes;
};

Timeline flatten(const FcpxmlProject& project, const FcpxmlResources& resources,
                 MediaFinder& media) {
  Flattener flattener(resources, media);
  const xmlNode* spine = xml::first_child_element(project.sequence, "spine");
  if (spine != nullptr) flattener.storyline(spine, k_zero, 0, true);
  for (Placed& item : flattener.seen) {
    const RationalTime duration = time_of(item.item, "duration");
    item.first = frames_up(item.place - project.tc_start, *project.frame_duration);
    item.end = frames_up(item.place + duration - project.tc_start, *project.frame_duration);
  }
  return {std::move(flattener.seen), std::move(flattener.lanes)};
}

}  // namespace

bool is_fcpxml_clip_item(const xmlNode* element, const FcpxmlResources& resources) {
  if (named(element, {"asset-clip", "clip", "sync-clip", "mc-clip", "ref-clip", "audition"})) {
    return true;
  }
  return xml::is_element(element, "video") && referenced(element, resources, "asset") != nullptr;
}

std::optional<MediaPoint> media_point(const xmlNode* clip_item, const RationalTime& local_time,
                                      const FcpxmlResources& resources) {
  MediaFinder finder(resources);
  return finder.at(clip_item, local_time);
}

std::vector<FcpxmlProject> fcpxml_projects(const xmlNode* root, const FcpxmlResources& resources) {
  std::vector<FcpxmlProject> projects;
  for (const xmlNode* element : xml::all_descendants(root, "project")) {
    FcpxmlProject project;
    project.project = element;
    project.name = xml::attribute(element, "name")
                       .value_or("Project " + std::to_string(projects.size() + 1));
    project.sequence = xml::first_child_element(element, "sequence");
    if (project.sequence != nullptr) {
      project.frame_duration =
          resources.frame_duration(xml::attribute(project.sequence, "format").value_or(""));
      project.tc_start = time_of(project.sequence, "tcStart");
      project.title_lane = std::max(1LL, highest_lane(project.sequence) + 1);
    }
    if (project.frame_duration) {
      const RationalTime duration = time_of(project.sequence, "duration");
      project.duration = duration.rescaled_to(frames_per_second(*project.frame_duration)).value();
      MediaFinder media(resources);
      const Timeline timeline = flatten(project, resources, media);
      project.lanes = timeline.lanes.size();
      sweep(timeline.seen, [&project](const Placed&, long long, long long) { ++project.shots; });
    }
    projects.push_back(std::move(project));
  }
  return projects;
}

std::vector<FcpxmlShot> fcpxml_shots(const FcpxmlProject& project,
                                     const FcpxmlResources& resources) {
  std::vector<FcpxmlShot> shots;
  if (project.sequence == nullptr || !project.frame_duration) return shots;
  MediaFinder media(resources);
  const Timeline timeline = flatten(project, resources, media);
  const xmlNode* spine = xml::first_child_element(project.sequence, "spine");
  const std::vector<Anchor> anchors = spine != nullptr ? primary_items(spine) : std::vector<Anchor>{};
  const TimeScale frames = frames_per_second(*project.frame_duration);
  sweep(timeline.seen, [&](const Placed& item, long long first, long long end) {
    FcpxmlShot shot;
    shot.item = item.item;
    shot.first_frame = first;
    shot.length = end - first;
    const RationalTime instant = project.tc_start + RationalTime(first, frames);
    shot.media = media.at(item.item, time_of(item.item, "start") + (instant - item.place));
    if (const Anchor* anchor = anchor_at(anchors, instant)) {
      shot.anchor = anchor->item;
      shot.anchor_time = time_of(anchor->item, "start") + (instant - anchor->place);
    }
    shots.push_back(shot);
  });
  return shots;
}

}  // namespace quillory
