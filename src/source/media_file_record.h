#pragma once
// The media file catalogue: one record per fully defined <file> element of a source document,
// with the facts a title shows about a clip's media.

#include <optional>
#include <string>
#include <vector>

#include "source/line_sink.h"
#include "source/date_time.h"
#include "xml/xml_handles.h"

namespace quillory {

struct MediaFileRecord {
  std::optional<std::string> id;  // the id attribute; absent when the element has none
  std::string name;
  std::string reel;          // "" when the file names no reel
  std::string frame_string;  // first-frame timecode; "" when the file gives none
  std::optional<DateTime> time;  // recording date and time, when the metadata gives one
  std::string path_url;  // where the media lies, as written ("file://localhost/…"); "" if not
  // What tolerant reading assumed for this file; every clip that uses it reports them.
  std::vector<std::string> assumptions;
  const xmlNode* xml = nullptr;  // the <file> definition itself
};

// Catalogues the given <file> elements in order. Elements without child nodes are references
// to a definition elsewhere and give no record. Writes four lines per record to `out`.
// Throws, naming the element and its line, when a definition lacks a required part or holds an
// unreadable date; `tolerant` reading assumes an empty name and skips such metadata instead.
std::vector<MediaFileRecord> get_files_info(const std::vector<xmlNode*>& files, LineSink& out,
                                            bool tolerant = false);

}  // namespace quillory
