#pragma once
// What an FCPXML document declares once and refers to by id: the children of <resources>
// (formats, assets, effects, media), and the version of the document they belong to.

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "startup/frame_rates.h"
#include "startup/rational_time.h"
#include "xml/xml_handles.h"

namespace quillory {

// The versions read and written, oldest first.
inline constexpr std::string_view k_fcpxml_versions[] = {"1.8",  "1.9",  "1.10",
                                                         "1.11", "1.12", "1.13"};

// The `version` of a root element <fcpxml> ("" without one), and whether it is one of those.
std::string fcpxml_version(const xmlNode* root);
bool fcpxml_version_read(std::string_view version);

// The document an FCPXML path names: a bundle (a folder whose name ends in ".fcpxmld") keeps
// it as "Info.fcpxml" inside; any other path is the document itself.
std::string fcpxml_document_path(const std::string& path);

class FcpxmlResources {
 public:
  // Indexes the <resources> children of the root element <fcpxml>.
  explicit FcpxmlResources(const xmlNode* root);

  // The resource with this id, the first in document order where two share it; null for none.
  const xmlNode* find(std::string_view id) const;
  // The same, only where it is the element named (<asset>, <format>, <effect>, <media>).
  const xmlNode* find(std::string_view id, const char* element) const;

  // The first <effect> whose `uid` is this; null for none.
  const xmlNode* find_effect_by_uid(std::string_view uid) const;

  // The `frameDuration` of the format this id names; none without one or when unreadable.
  std::optional<RationalTime> frame_duration(std::string_view format_id) const;

 private:
  const xmlNode* resources_ = nullptr;
  std::unordered_map<std::string, const xmlNode*> by_id_;
};

// The rate row whose frame lasts exactly `frame_duration` (1001/30000 s is NTSC/HD (29.97fps));
// none for any other duration.
std::optional<RateRecord> find_frame_rate_by_duration(const RationalTime& frame_duration);

// An asset's media file name: the last path component, percent-decoded, of the `src` of its
// first <media-rep> of kind "original-media" (else its first <media-rep>), or of its own
// `src` (version 1.8), as written where its escapes stand for characters XML may not hold;
// "" when it has none.
std::string asset_media_file_name(const xmlNode* asset);
// The URL that name comes from, as the document writes it ("file:///..."); "" for none.
std::string asset_media_url(const xmlNode* asset);

// Whether an asset holds a picture: its `hasVideo` is "1".
bool asset_has_video(const xmlNode* asset);

}  // namespace quillory
