#pragma once
// The shots of an edited sequence: the runs of frames over which one clip item is the picture
// seen, that is the enabled clip item of the highest enabled video track there. Generators,
// transitions and Premiere Pro's generated media (a file with a <mediaSource>: slugs, mattes,
// graphics) never hide what lies below them; a clip item holding a nested sequence is seen.

#include <string>
#include <vector>

#include "source/catalogue.h"
#include "source/clip_record.h"
#include "startup/frame_rate.h"
#include "xml/xml_handles.h"

namespace quillory {

struct SequenceSummary {
  std::string name;  // its <name>, or "Sequence N" (N its number among these) without one
  xmlNode* element = nullptr;
  std::string rate;  // the name of its rate's row; "" when none matches
  FrameRate frame_rate;      // its rate as written, the NTSC flag read loosely
  std::string written_rate;  // the same, for a message: ntsc "True" and timebase 30
  RationalTime duration;     // its <duration>, in its frames
  std::size_t video_tracks = 0;
  std::size_t shots = 0;
};

// What shots are read against: the document's elements by id, each id's first that counts.
class DocumentIndex {
 public:
  explicit DocumentIndex(xmlDoc* doc);

  // The first full definition (an element with content) of the file with this id.
  const xmlNode* file(const std::string& id) const;
  // The name of the first sequence with this id that has a name.
  const std::string* sequence_name(const std::string& id) const;
  // The first master clip (<clip>) with this id.
  const xmlNode* master_clip(const std::string& id) const;
  // The sequences not inside a clip item, in document order.
  const std::vector<xmlNode*>& top_level_sequences() const { return top_level_; }

 private:
  std::unordered_map<std::string, const xmlNode*> files_;
  std::unordered_map<std::string, std::string> sequence_names_;
  std::unordered_map<std::string, const xmlNode*> master_clips_;
  std::vector<xmlNode*> top_level_;
};

// The document's top-level sequences, each with its shots counted. `tolerant` matches rates
// as tolerant reading does.
std::vector<SequenceSummary> summarize_sequences(const DocumentIndex& index, bool tolerant);

// How many shots `sequence` has.
std::size_t count_shots(const xmlNode* sequence, const DocumentIndex& index);

// One Clip record for each shot of `sequence`, as a master clip's is made: the facts of the
// shot's clip item and its media file, its logging (else its master clip's), and the timecode
// of the shot's own first frame. A field the item lacks is left empty. `doc` holds the
// sequence; every record keeps it alive.
std::vector<ClipRecord> read_shots(const SequenceSummary& sequence, const DocumentIndex& index,
                                   const Catalogue& catalogue, const xml::SharedDocument& doc);

}  // namespace quillory
