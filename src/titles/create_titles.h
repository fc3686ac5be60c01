#pragma once
// Creating the titles of an opened source, whatever it is: the writer of its format, over its
// clips or the shots of the sequence or project chosen.

#include "source/assumption_report.h"
#include "source/get_info_from_clips.h"
#include "source/line_sink.h"
#include "titles/destination.h"
#include "titles/title_settings.h"

namespace quillory {

// Writes the titles of `source` (opened whole) as `settings` ask, `to` a file or descriptor,
// with the writer its format and choice call for: master clips or event clips laid end to end
// on a new sequence or project, or the chosen sequence or project copied with a title per shot.
// Throws as those writers do.
AssumptionReport create_titles(const OpenedSource& source, const TitleSettings& settings,
                               const Destination& to, LineSink& out);

}  // namespace quillory
