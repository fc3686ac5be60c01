#include "startup/make_folder.h"

#include <filesystem>
#include <system_error>
#include <vector>

namespace quillory {

void make_folder(const std::string& folder, const std::string& failure, bool owner_only) {
  namespace fs = std::filesystem;
  std::error_code error;
  std::vector<fs::path> missing;  // the levels this call makes, deepest first
  for (fs::path level = fs::path(folder).lexically_normal();
       !level.empty() && !fs::exists(level, error); level = level.parent_path()) {
    missing.push_back(level);
    if (level == level.parent_path()) break;
  }
  fs::create_directories(folder, error);
  for (auto level = missing.rbegin(); level != missing.rend() && !error && owner_only; ++level) {
    fs::permissions(*level, fs::perms::owner_all, error);
  }
  if (error) throw std::system_error(error, failure);
}

}  // namespace quillory
