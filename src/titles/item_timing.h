#pragma once
// Timing a clip on the new sequence: how long it is, and the <start> and <end> that every
// placed copy of its items gets. Where the source lacks what the timing needs, strict reading
// throws IncompleteInput and tolerant reading makes up for it and says what it assumed.

#include <string>
#include <vector>

#include "xml/xml_handles.h"

namespace quillory {

// The clip's length in frames, as its <duration> states it. A clip without one is measured by
// its first clip item (`video_item`, else `audio_item`; either may be null): that item's
// <duration>, else its <out> - <in>, else 0, noted in `made`. `label` names the clip.
long long clip_length(const xmlNode* clip, const xmlNode* video_item, const xmlNode* audio_item,
                      const std::string& label, bool tolerant, std::vector<std::string>& made);

// Which of <start> and <end> the item lacks: "<start>", "<end>", "<start>/<end>", or "" when
// none. Strict reading throws IncompleteInput for either, naming the item as `owner`.
std::string check_item_timing(const xmlNode* item, const std::string& owner, bool tolerant);

// Sets the placed copy's <start> and <end>, adding those it lacks where xmeml puts them:
// <start> after <rate>, else before <in>, else last; <end> after <start>.
void set_item_timing(xmlNode* item, const std::string& start, const std::string& end);

// The placed items of one clip that lacked <start> or <end>, grouped by what they lacked, so
// that one phrase tells each group: "video clip item and audio clip items 1, 2 have no
// <start>/<end>, added".
class UntimedItems {
 public:
  // `missing` as check_item_timing returns it; `audio_number` counts the clip's audio items
  // from 1, and 0 is its video item.
  void add(const std::string& missing, std::size_t audio_number);
  void describe(std::vector<std::string>& made) const;

 private:
  struct Group {
    std::string missing;
    bool video = false;
    std::vector<std::string> audio;
  };
  std::vector<Group> groups_;
};

}  // namespace quillory
