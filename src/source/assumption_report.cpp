#include "source/assumption_report.h"

#include "source/user_message.h"

namespace quillory {
namespace {

std::string joined(const std::vector<std::string>& phrases) {
  std::string text;
  for (const auto& phrase : phrases) text += (text.empty() ? "" : "; ") + phrase;
  return text;
}

std::string counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

class Tally {
 public:
  void add(const std::string& who, const xmlNode* element, const std::vector<std::string>& made) {
    if (made.empty()) return;
    const std::string line = element ? " (line " + std::to_string(xmlGetLineNo(element)) + ")" : "";
    report_.warnings.push_back("quillory: warning: " + who + line + ": " + joined(made));
    ++clips_;
    assumptions_ += made.size();
  }

  AssumptionReport finish() {
    if (clips_ > 0) {
      report_.summary = "quillory: " + counted(clips_, "clip") + " needed " +
                        counted(assumptions_, "assumption") + "; see the warnings above";
    }
    return std::move(report_);
  }

 private:
  AssumptionReport report_;
  std::size_t clips_ = 0;
  std::size_t assumptions_ = 0;
};

}  // namespace

AssumptionReport report_assumptions(const std::vector<TitleTemplate>& templates,
                                    const std::vector<ClipRecord>& clips,
                                    const std::vector<std::vector<std::string>>& assembled) {
  Tally tally;
  for (const auto& title : templates) {
    tally.add("title template \"" + shown(title.name) + "\"", title.xml, title.assumptions);
  }
  for (std::size_t i = 0; i < clips.size(); ++i) {
    std::vector<std::string> made = clips[i].assumptions;
    if (i < assembled.size()) made.insert(made.end(), assembled[i].begin(), assembled[i].end());
    tally.add("clip " + std::to_string(i + 1) + " \"" + shown(clips[i].clip_name) + "\"", clips[i].xml,
              made);
  }
  return tally.finish();
}

}  // namespace quillory
