#include "titles/lacking_items.h"

#include <algorithm>

namespace quillory {

void LackingItems::add(const std::string& missing, std::size_t audio_number) {
  if (missing.empty()) return;
  auto group = std::find_if(groups_.begin(), groups_.end(),
                            [&missing](const Group& g) { return g.missing == missing; });
  if (group == groups_.end()) group = groups_.insert(groups_.end(), Group{missing, false, {}});
  if (audio_number == 0) {
    group->video = true;
  } else {
    group->audio.push_back(std::to_string(audio_number));
  }
}

void LackingItems::describe(std::vector<std::string>& made, const std::string& remedy) const {
  for (const auto& group : groups_) {
    std::string items = group.video ? "video clip item" : "";
    if (!group.audio.empty()) {
      items += std::string(items.empty() ? "" : " and ") + "audio clip item" +
               (group.audio.size() == 1 ? " " : "s ");
      for (std::size_t i = 0; i < group.audio.size(); ++i) {
        items += (i == 0 ? "" : ", ") + group.audio[i];
      }
    }
    const bool several = group.audio.size() + (group.video ? 1 : 0) > 1;
    made.push_back(items + (several ? " have no " : " has no ") + group.missing + ", " + remedy);
  }
}

}  // namespace quillory
