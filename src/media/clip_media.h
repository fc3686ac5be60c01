#pragma once
// Which media file a clip's title is drawn over, and which of its frames: where the title
// starts, the frame whose timecode the title shows.

#include <optional>
#include <string>

#include "media/frame_decoder.h"
#include "media/media_folder.h"
#include "source/clip_record.h"

namespace quillory::media {

struct ClipMedia {
  std::optional<std::string> path;  // as the document gives it, if it names one
  std::string file_name;            // what the file is looked for by in a media folder
  FramePosition first_frame;
};

// A master clip's media from its first video clip item's <in>; a shot's from its own clip
// item's <in>. The frame is counted at the item's rate, else the clip's, else the media's own.
ClipMedia clip_media(const ClipRecord& clip);

// The path of the clip's media on this machine: where the document says, when a file is there;
// else the file of its name in `folder`; none when neither holds it.
std::optional<std::string> locate_media(const ClipMedia& media, const MediaFolder* folder);

}  // namespace quillory::media
