#pragma once
// Titles over the shots of an FCPXML project: the project copied as it is, every element and
// attribute, with a title over each shot anchored to the primary storyline's item under the
// shot's first frame, on a lane above every picture; written as an FCPXML document of the
// source's version.

#include <vector>

#include "source/assumption_report.h"
#include "source/clip_record.h"
#include "source/line_sink.h"
#include "titles/destination.h"
#include "titles/fcpxml_writer.h"
#include "titles/title_settings.h"
#include "xml/xml_handles.h"

namespace quillory {

// Writes the copy of `project` (a <project> of `source`), named as `settings` say, with a title
// made from one of `templates` over each of `shots`, its shots in time order, `to` a file or
// descriptor; two progress lines per shot go to `out`. The source is not changed. Throws when
// no output is known or the write fails; the previous output file then stays as it was.
// Returns the warnings, one of them when no clip item is seen in the project.
AssumptionReport create_fcpxml_over_project(const std::vector<TitleTemplate>& templates,
                                            const std::vector<ClipRecord>& shots,
                                            const TitleSettings& settings, const xmlNode* project,
                                            const Destination& to, LineSink& out);

// The frame of the project's sequence: its format's width and height (1920 by 1080 where it
// states none).
FcpxmlFrame fcpxml_project_sequence_frame(const xmlNode* project);

}  // namespace quillory
