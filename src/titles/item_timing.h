#pragma once
// Timing a clip on the new sequence: how long it is, the <start> and <end> that every placed
// copy of its items gets, and the <in> and <out> that say which frames of its media it shows.
// Where the source lacks what the timing needs, strict reading throws IncompleteInput and
// tolerant reading makes up for it and says what it assumed.

#include <string>
#include <vector>

#include "startup/rational_time.h"
#include "xml/xml_handles.h"

namespace quillory {

// The clip's length in frames, as its <duration> states it. A clip without one is measured by
// its first clip item (`video_item`, else `audio_item`; either may be null): that item's
// <duration>, else its <out> - <in>, else 0, noted in `made`. `label` names the clip.
long long clip_length(const xmlNode* clip, const xmlNode* video_item, const xmlNode* audio_item,
                      const std::string& label, bool tolerant, std::vector<std::string>& made);

// What is amiss with the clip's <duration>, as a phrase for a warning: "" when it has none or
// it holds a whole number of frames that is not negative; else how it reads and what placing
// it as it reads gives, e.g. '<duration> "abc" is not a whole number, placed as 0 frames'.
std::string odd_duration(const xmlNode* clip);

// Which of <start> and <end> the item lacks: "<start>", "<end>", "<start>/<end>", or "" when
// none. Strict reading throws IncompleteInput for either, naming the item as `owner`.
std::string check_item_timing(const xmlNode* item, const std::string& owner, bool tolerant);

// Sets the placed copy's <start> and <end> to where it lies on the sequence, in the sequence's
// frames, adding those it lacks where xmeml puts them: <start> after <rate>, else before
// <in>, else last; <end> after <start>.
void set_item_timing(xmlNode* item, const TimeRange& place);

// Which of <in> and <out> the item lacks: "<in>", "<out>", "<in>/<out>", or "" when none.
// Strict reading places such an item as it is.
std::string missing_source_range(const xmlNode* item);

// Adds the <in> and <out> that the placed copy lacks right after its <end>: <in> 0 and <out>
// `length`, the clip's length, so that the item shows its media from the first frame on.
// Importers read both to know which frames of the media the item shows, and cannot read an
// item without them. The copy has its <end> already: set_item_timing gave it one.
void add_source_range(xmlNode* item, const RationalTime& length);

}  // namespace quillory
