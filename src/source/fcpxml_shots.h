#pragma once
// The shots of an FCPXML project. A project's sequence is a tree of timelines: the primary
// storyline (a <spine>), items anchored to its items on lanes above and below, secondary
// storylines (anchored spines) with their own time, each item with a local timeline that
// starts at its `start`. Flattened, it gives the picture seen at each frame: the enabled clip
// item showing a picture at the highest lane (the later in document order at one lane).
// Titles, generators, gaps and audio never hide what lies below them. A shot is a run of frames
// over which one clip item is seen.

#include <vector>

#include "source/fcpxml_resources.h"
#include "startup/rational_time.h"
#include "xml/xml_handles.h"

namespace quillory {

struct FcpxmlShot {
  const xmlNode* item = nullptr;  // the clip item seen (an audition's pick)
  long long first_frame = 0;      // frames of the sequence from its tcStart
  long long length = 0;           // in frames of the sequence
  RationalTime item_time;         // the first frame on the item's local timeline
  // The item of the primary storyline (not a transition) over the first frame, which a title
  // over the shot is anchored to, and that frame on its local timeline.
  const xmlNode* anchor = nullptr;
  RationalTime anchor_time;
};

// The shots of a project's <sequence> in time order; none where its format states no frame
// duration.
std::vector<FcpxmlShot> fcpxml_shots(const xmlNode* sequence, const FcpxmlResources& resources);

// The lanes, from the primary storyline's 0 up, that the sequence's items stand on.
std::size_t fcpxml_lanes_used(const xmlNode* sequence);

// The lane above every lane any element of the sequence names, at least 1: a title there lies
// above every picture.
long long fcpxml_title_lane(const xmlNode* sequence);

}  // namespace quillory
