#pragma once
// Opening an FCPXML document (Final Cut Pro 10 and later, DaVinci Resolve): its event clips
// become the clips of the run, as an xmeml document's master clips do; its titles are the
// templates after the built-in Basic Title; its projects are listed as its sequences.

#include <optional>
#include <string>
#include <vector>

#include "source/fcpxml_resources.h"
#include "source/get_info_from_clips.h"
#include "source/line_sink.h"
#include "source/parse_xml_file.h"

namespace quillory {

// The type of every FCPXML title template.
inline constexpr const char* kFcpxmlTitleType = "Title";

// The template every FCPXML open offers first, "Default": no element of the document; the
// writer makes Final Cut Pro's Basic Title for it.
TitleTemplate fcpxml_default_template();

// Reads a loaded document whose root is <fcpxml>, writing the progress lines to `out`. A
// version not read gives NotXmeml, with the version and the versions read as its error. With
// a `project` named, the clips are that project's shots.
OpenedSource read_fcpxml_source(LoadedDocument loaded, bool tolerant, LineSink& out,
                                const std::optional<std::string>& project = {});

// The event clips: the clip items that are children of an <event> (wherever it stands) or of
// the root, in document order.
std::vector<xmlNode*> fcpxml_event_clips(const xmlNode* root, const FcpxmlResources& resources);

// The document's projects, listed as sequences are: name (else "Project N"), rate, length in
// frames of its sequence's format and the lanes its picture uses.
std::vector<SequenceSummary> summarize_fcpxml_projects(const xmlNode* root,
                                                       const FcpxmlResources& resources);

}  // namespace quillory
