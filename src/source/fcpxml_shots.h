#pragma once
// The shots of an FCPXML project. A project's sequence is a tree of timelines: the primary
// storyline (a <spine>), items anchored to its items on lanes above and below, secondary
// storylines (anchored spines) with their own time, each item with a local timeline that
// starts at its `start`. Flattened, it gives the picture seen at each frame: the enabled clip
// item showing a picture at the highest lane (the later in document order at one lane).
// Titles, generators, gaps and audio never hide what lies below them. A shot is a run of frames
// over which one clip item is seen.

#include <optional>
#include <string>
#include <vector>

#include "source/fcpxml_resources.h"
#include "startup/rational_time.h"
#include "xml/xml_handles.h"

namespace quillory {

// Where a frame's picture comes from: the item whose media it shows (an <asset-clip>, or a
// <video> naming an asset) and the time on that item's local timeline, its source time.
struct MediaPoint {
  const xmlNode* item = nullptr;
  RationalTime time;
};

// The media item a clip item shows at `local_time` (a time of the clip item's own local
// timeline), carried through containers, auditions and multicam angles; none for a compound
// clip (<ref-clip>) or where nothing with media lies at that time.
std::optional<MediaPoint> media_point(const xmlNode* clip_item, const RationalTime& local_time,
                                      const FcpxmlResources& resources);

// Whether `element` is a clip item: an <asset-clip>, <clip>, <sync-clip>, <mc-clip>, <ref-clip>
// or <audition>, or a <video> whose `ref` names an asset (one naming an effect is a generator).
bool is_fcpxml_clip_item(const xmlNode* element, const FcpxmlResources& resources);

struct FcpxmlProject {
  std::string name;  // its `name`, or "Project N" (N its number among the projects)
  const xmlNode* project = nullptr;
  const xmlNode* sequence = nullptr;  // null when the project holds none
  // The `frameDuration` of the sequence's format; none without one, and then it has no frames.
  std::optional<RationalTime> frame_duration;
  RationalTime tc_start;
  long long duration = 0;  // in whole frames, rounded
  std::size_t lanes = 0;   // the lanes its timeline's items stand on, the primary one included
  std::size_t shots = 0;
  // The lane above every lane any element of the sequence names, at least 1.
  long long title_lane = 1;
};

// The document's projects in document order (a name held by two: the first is meant).
std::vector<FcpxmlProject> fcpxml_projects(const xmlNode* root, const FcpxmlResources& resources);

struct FcpxmlShot {
  const xmlNode* item = nullptr;  // the clip item seen (an audition's first child)
  long long first_frame = 0;      // frames from the sequence's tcStart
  long long length = 0;           // in frames of the sequence
  // The media and source time of the first frame; none for a compound clip.
  std::optional<MediaPoint> media;
  // The item of the primary storyline (not a transition) over the first frame, which a title
  // over the shot is anchored to, and that frame's time on its local timeline.
  const xmlNode* anchor = nullptr;
  RationalTime anchor_time;
};

// The shots of the project in time order.
std::vector<FcpxmlShot> fcpxml_shots(const FcpxmlProject& project,
                                     const FcpxmlResources& resources);

}  // namespace quillory
