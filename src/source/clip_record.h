#pragma once
// The records that opening a source document makes: one per media clip, and one per title
// template the user can choose from.

#include <optional>
#include <string>
#include <vector>

#include "source/date_time.h"
#include "startup/rational_time.h"
#include "xml/xml_handles.h"

namespace quillory {

// Where a shot of an edited sequence lies: the sequence frames over which its clip item is the
// picture seen.
struct ShotPlace {
  TimeRange place;          // in the sequence's frames
  xmlNode* item = nullptr;  // the clip item seen
};

struct ClipRecord {
  std::string clip_name;
  std::string file_name;
  std::string reel;
  std::string scene;
  std::string shottake;
  std::string lognote;
  std::string frame_string;
  std::optional<DateTime> time;
  std::string path_url;  // of its media file, as the document writes it; "" when not given
  xmlNode* xml = nullptr;         // the clip's <clip> element in the source document
  xml::SharedDocument document;  // keeps that document alive
  // The full definition of the clip's media file, when the document holds one.
  const xmlNode* media_file = nullptr;
  // What tolerant reading assumed for this clip (and its media file) while opening, one
  // phrase each, e.g. "no <logginginfo/scene>, scene left empty".
  std::vector<std::string> assumptions;
  // A shot of the chosen sequence rather than a master clip: then `xml` is its clip item.
  std::optional<ShotPlace> shot;
};

struct TitleTemplate {
  std::string name;
  std::string type;  // "Text" or "Outline Text"
  // The generator item to copy: a <generatoritem> of the source document, or (for the built-in
  // template) a parsed fragment whose top-level nodes are copied.
  xmlNode* xml = nullptr;
  xml::SharedDocument document;  // the document `xml` belongs to
  std::vector<std::string> assumptions;  // as a clip record's
};

}  // namespace quillory
