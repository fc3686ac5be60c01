#pragma once
// How a run tells the user what tolerant reading assumed: one warning line for every clip
// that needed an assumption, then one summary line.

#include <string>
#include <vector>

#include "source/clip_record.h"

namespace quillory {

struct AssumptionReport {
  // 'quillory: warning: clip 7 "A003C012" (line 1532): no <logginginfo/scene>, scene left
  // empty; ...', clips in order, title templates (generator clips) first.
  std::vector<std::string> warnings;
  // "quillory: 12 clips needed 31 assumptions; see the warnings above"; "" when none was made.
  std::string summary;
};

// The report of an open (`templates` and `clips` as it read them) and, when titles were made,
// of the assumptions `assembled` made while placing clip i (indexed like `clips`; may be
// shorter).
AssumptionReport report_assumptions(
    const std::vector<TitleTemplate>& templates, const std::vector<ClipRecord>& clips,
    const std::vector<std::vector<std::string>>& assembled = {});

}  // namespace quillory
