#pragma once
// Creating titles over an FCPXML document's event clips: a new project lays a copy of every
// clip end to end from 0s, with a title anchored to each one, and is written as an FCPXML
// document of the source's version.

#include <string>
#include <vector>

#include "source/assumption_report.h"
#include "source/clip_record.h"
#include "source/line_sink.h"
#include "titles/destination.h"
#include "titles/title_settings.h"
#include "xml/xml_handles.h"

namespace quillory {

// Writes the project of `clips` (event clips of `source`) `to` a file or descriptor, with a
// title made from one of `templates` over each, as `settings` ask; two progress lines per clip
// go to `out`. The source is not changed. Throws when no output is known or the write fails;
// the previous output file then stays as it was.
AssumptionReport create_fcpxml(const std::vector<TitleTemplate>& templates,
                               const std::vector<ClipRecord>& clips, const TitleSettings& settings,
                               const xmlDoc* source, const Destination& to, LineSink& out);

// The frame the titles of a new project over `clips` lie over at `rate`: the source's first
// format of that frame duration, else the format of the first clip that shows a picture, else
// 1920 by 1080.
struct FcpxmlFrame {
  int width = 1920;
  int height = 1080;
};
FcpxmlFrame fcpxml_project_frame(const std::vector<ClipRecord>& clips, const xmlDoc* source,
                                 const FrameRate& rate);

}  // namespace quillory
