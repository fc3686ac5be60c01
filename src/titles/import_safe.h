#pragma once
// Import-safe output. In xmeml the first element carrying an id defines it, and a later element
// with the same id is read as a reference to the first, whatever it holds; importers resolve
// ids that way. This pass rewrites a title sequence so that such a reader gets what was
// written: every title an id of its own and the sequence's rate, each media file defined where
// it is first used, the sequence's real duration, and UUIDs of its own.

#include <string>
#include <vector>

#include "source/clip_record.h"
#include "xml/xml_handles.h"

namespace quillory {

struct ImportSafeRun {
  std::string source;         // the source document's path, whose file name the UUIDs derive from
  std::string sequence_name;  // likewise
  long long duration = 0;     // the end of the last clip
};

// Rewrites `output` (a title sequence built from `clips`, titles on video track 2) in place.
// Returns a warning line for every id that the document still repeats.
std::vector<std::string> make_import_safe(xmlDoc* output, const std::vector<ClipRecord>& clips,
                                          const ImportSafeRun& run);

}  // namespace quillory
