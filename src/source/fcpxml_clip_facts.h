#pragma once
// What an FCPXML clip item says about the media it shows: the item that holds the media (an
// asset-clip, or a <video> naming an asset) found through containers, multicam angles and
// auditions; the time in that media of a frame of the clip item; and the facts a title shows,
// read into a ClipRecord as an xmeml master clip's are.

#include <optional>
#include <string>

#include "source/clip_record.h"
#include "source/fcpxml_resources.h"
#include "startup/frame_rates.h"
#include "startup/rational_time.h"
#include "xml/xml_handles.h"

namespace quillory {

// Whether `node` is a clip item: an asset-clip, clip, sync-clip, mc-clip, ref-clip or audition,
// or a <video> whose ref names an asset (one naming an effect is a generator).
bool is_fcpxml_clip_item(const xmlNode* node, const FcpxmlResources& resources);

// What an audition stands for: its first child element; any other item stands for itself.
const xmlNode* fcpxml_audition_pick(const xmlNode* item);

// The media item of a clip item at `local_time` on the item's own timeline (which begins at
// its `start`), and the time of that frame in the media item's source.
struct FcpxmlMediaPoint {
  const xmlNode* media_item = nullptr;  // none: a compound clip, a gap, nothing at that time
  RationalTime source_time;
};
FcpxmlMediaPoint fcpxml_media_point(const xmlNode* clip_item, const RationalTime& local_time,
                                    const FcpxmlResources& resources);

// The asset a media item names; null for none.
const xmlNode* fcpxml_media_asset(const xmlNode* media_item, const FcpxmlResources& resources);

// The <format> whose frame duration gives a clip item's rate: its own `format` (for a
// multicam or compound clip, its media's), else its media item's asset's; null for none.
const xmlNode* fcpxml_clip_format(const xmlNode* clip_item, const xmlNode* media_item,
                                  const FcpxmlResources& resources);

// Whether the clip item shows a picture: its media item's asset has video, or it is a compound
// clip; never when its `srcEnable` is "audio".
bool fcpxml_shows_picture(const xmlNode* clip_item, const xmlNode* media_item,
                          const FcpxmlResources& resources);

// The facts of a clip item whose first frame lies at `first_frame` on its own timeline: name,
// file, reel, scene, take, note, recording date and the timecode of that frame in its media.
// `xml` is the clip item; `document` is left for the caller to set.
ClipRecord fcpxml_clip_record(const xmlNode* clip_item, const RationalTime& first_frame,
                              const FcpxmlResources& resources);

// The timecode of `source_time` counted in frames of `frame_duration` (rounded to the nearest,
// a half up), at the rate row of that duration (else round(1 / duration) frames a second),
// drop-frame where `drop_frame` and the rate is 29.97 or 59.94.
std::string fcpxml_timecode(const RationalTime& source_time, const RationalTime& frame_duration,
                            bool drop_frame);

// Whether the clip item is retimed (a <timeMap> or <conform-rate> on it or on an item below).
bool fcpxml_retimed(const xmlNode* clip_item);

}  // namespace quillory
