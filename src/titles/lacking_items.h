#pragma once
// What the placed items of one clip lacked, grouped by what they lacked, so that one phrase
// tells each group: "video clip item and audio clip items 1, 2 have no <start>/<end>, added".

#include <string>
#include <vector>

namespace quillory {

class LackingItems {
 public:
  // `missing` names what the item lacks ("<start>/<end>"), "" when nothing; `audio_number`
  // counts the clip's audio items from 1, and 0 is its video item.
  void add(const std::string& missing, std::size_t audio_number);
  // One phrase per group, ending with `remedy`: what the placed copies got instead.
  void describe(std::vector<std::string>& made, const std::string& remedy) const;

 private:
  struct Group {
    std::string missing;
    bool video = false;
    std::vector<std::string> audio;
  };
  std::vector<Group> groups_;
};

}  // namespace quillory
