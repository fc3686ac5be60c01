#pragma once
// Creating titles: lays every clip end to end on a new sequence, puts a title over each one,
// and writes the document, replacing the previous output file whole.

#include <optional>
#include <string>

#include <vector>

#include "source/assumption_report.h"
#include "source/clip_record.h"
#include "titles/destination.h"
#include "titles/title_settings.h"
#include "source/line_sink.h"

namespace quillory {

// Builds the title sequence of `clips` with a title made from one of `templates` over each,
// as `settings` ask, and writes it `to` a file or descriptor. Neither the lists nor the source document
// are changed. Throws, naming the clip, when a clip or the template lacks something the
// sequence needs (IncompleteInput where tolerant reading would assume it), and when no output
// path or no template is known; the previous output file then stays as it was. Returns what
// tolerant reading assumed, while opening and here, after the ids that import-safe output
// still repeats, and what placing the clips took as it stood: a <duration> that is negative or
// not a whole number, and a clip whose rate (`clip_rates`, the name of each clip's, "" when
// unknown) is not the sequence's.
AssumptionReport create_fcp_xml(const std::vector<TitleTemplate>& templates,
                                const std::vector<ClipRecord>& clips,
                                const TitleSettings& settings, const Destination& to,
                                LineSink& out, const std::vector<std::string>& clip_rates = {});

}  // namespace quillory
