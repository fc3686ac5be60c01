#pragma once
// Opening a source document: loads it and reads the title templates it offers, one record per
// media clip, and the frame rates met among those clips.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "source/clip_record.h"
#include "startup/frame_rate.h"
#include "source/parse_xml_file.h"
#include "source/sequence_shots.h"
#include "source/line_sink.h"

namespace quillory {

enum class OpenStatus {
  Opened,      // read whole
  Unreadable,  // the file could not be loaded: nothing was read
  NotXmeml,    // its first node is not <xmeml>: nothing was read
  NoSequence,  // no top-level sequence has the name asked for: nothing was read
  Broken,      // an xmeml document in which a clip or a file definition lacks something
};

// The format of the document an open read.
enum class SourceFormat { Xmeml, Fcpxml };

struct OpenedSource {
  OpenStatus status = OpenStatus::Unreadable;
  SourceFormat format = SourceFormat::Xmeml;
  // Unreadable and Broken: what went wrong and where (file, element, line), for the user;
  // NotXmeml: what stands before its root element <xmeml>, when that is all that is wrong, or
  // the FCPXML version that is not read.
  std::string error;
  // Broken and NotXmeml: the error is one that tolerant reading takes with an assumption.
  bool incomplete = false;
  // The built-in template first, then the document's text-generator clips in document order.
  std::vector<TitleTemplate> templates;
  std::vector<ClipRecord> clips;
  // The rate name of each clip in `clips`, "" when no rate matches (tolerant reading only); a
  // Broken open may lack the last clip's.
  std::vector<std::string> clip_rates;
  // Each rate name once, in order of first appearance (a Broken open leaves repeats in).
  std::vector<std::string> frame_rates;
  std::string digest;  // of the source's bytes
  // The sequences the document holds outside any clip item, in document order.
  std::vector<SequenceSummary> sequences;
  // Where a sequence was chosen: its element, whose shots `clips` are, and its rate as
  // written; the document is kept for it even when no shot holds it.
  xmlNode* sequence = nullptr;
  FrameRate sequence_rate;
  xml::SharedDocument document;
  // Warnings about the document as a whole, beside those of its clips.
  std::vector<std::string> warnings;
};

// Runs `read`, which fills `opened` from the document at `path`; where it throws, records why in
// `opened` (with whether tolerant reading would take it) and returns false.
bool read_or_record_failure(OpenedSource& opened, const std::string& path,
                            const std::function<void()>& read);

// Loads the document at `path` and reads it, writing the progress lines to `out`. `built_in`
// is the template every open offers first. A Broken open keeps what the clips before the
// failing one gave, and that clip's own record when only its rate is at fault. `tolerant`
// reading takes a clip or file that lacks something with an assumption, noted in its record,
// where strict reading stops.
// With a `sequence` named, the clips are the shots of the top-level sequence of that name
// (the first, where several share it), read as master clips are read; the document's
// text-generator clips are still its templates.
OpenedSource get_info_from_clips(const std::string& path, const TitleTemplate& built_in,
                                 bool tolerant, LineSink& out,
                                 const std::optional<std::string>& sequence = {});

// What get_info_from_clips does once the document is loaded.
OpenedSource read_loaded_source(LoadedDocument loaded, const TitleTemplate& built_in,
                                bool tolerant, LineSink& out,
                                const std::optional<std::string>& sequence = {});

// The last component of a path, extension included.
std::string base_name(const std::string& path);

// The name a new sequence starts from: the file name without its last extension (a name that
// is all extension, ".xml", is kept whole), as std::filesystem::path::stem gives it.
std::string sequence_name_for(const std::string& path);

// How a message names a clip: clip "A001" (<clip> at line 12 of dailies.xml), or with its
// `number` among the clips placed when one is given: clip 3 "A001" (...).
std::string clip_label(const std::string& name, const xmlNode* clip, std::size_t number = 0);

}  // namespace quillory
