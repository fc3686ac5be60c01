#include "media/media_folder.h"

#include <filesystem>

namespace quillory::media {

MediaFolder::MediaFolder(const std::string& folder) {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::recursive_directory_iterator walk(folder, fs::directory_options::skip_permission_denied, error);
  for (; !error && walk != fs::recursive_directory_iterator(); walk.increment(error)) {
    std::error_code kind;
    if (!walk->is_regular_file(kind)) continue;
    const std::string path = walk->path().string();
    auto [place, added] = by_name_.try_emplace(walk->path().filename().string(), path);
    if (!added && path < place->second) place->second = path;
  }
}

const std::string* MediaFolder::find(const std::string& name) const {
  const auto found = by_name_.find(name);
  return found == by_name_.end() ? nullptr : &found->second;
}

}  // namespace quillory::media
