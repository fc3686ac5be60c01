#pragma once
// A folder the user points at where media moved from where an export says they lie: every
// file below it, indexed by name once, as editing programs relink.

#include <string>
#include <unordered_map>

namespace quillory::media {

class MediaFolder {
 public:
  MediaFolder() = default;
  // Walks `folder` and all its subfolders; unreadable ones are passed over.
  explicit MediaFolder(const std::string& folder);

  // The path of the file named `name` (exactly); where several share it, the first by path.
  // Null when none.
  const std::string* find(const std::string& name) const;

 private:
  std::unordered_map<std::string, std::string> by_name_;
};

}  // namespace quillory::media
