#pragma once
// Titles over an edited sequence: the sequence copied as it is, every track, item, transition,
// filter, marker and nested sequence, plus one video track above its own holding a title over
// each shot.

#include <vector>

#include "source/assumption_report.h"
#include "source/clip_record.h"
#include "titles/destination.h"
#include "titles/title_settings.h"
#include "source/line_sink.h"

namespace quillory {

// Writes the copy of `sequence` (named as `settings` say) with a title made from one of
// `templates` over each of `shots`, the shots of that sequence in time order. The output is
// always import-safe: the copy keeps the source's ids, so only titles with ids of their own,
// files defined where first used and UUIDs of its own make it read right. Throws as
// create_fcp_xml does; returns the warnings, one of them when no clip item is seen at all.
AssumptionReport create_titles_over_sequence(const std::vector<TitleTemplate>& templates,
                                             const std::vector<ClipRecord>& shots,
                                             const xmlNode* sequence,
                                             const TitleSettings& settings,
                                             const Destination& to, LineSink& out);

}  // namespace quillory
