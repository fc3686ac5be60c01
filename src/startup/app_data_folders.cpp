#include "startup/app_data_folders.h"

#include <cstdlib>

namespace quillory {
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

}  // namespace

std::vector<std::string> application_support_folders() {
  const std::string home = environment("HOME");
#ifdef __APPLE__
  if (home.empty()) return {};
  return {home + "/Library/Application Support"};
#else
  const std::string data_home = environment("XDG_DATA_HOME");
  if (!data_home.empty() && data_home.front() == '/') return {data_home};
  if (home.empty()) return {};
  return {home + "/.local/share"};
#endif
}

std::string expand_tilde(const std::string& path) {
  if (path.empty() || path.front() != '~' || (path.size() > 1 && path[1] != '/')) return path;
  const std::string home = environment("HOME");
  if (home.empty()) return path;
  return home + path.substr(1);
}

}  // namespace quillory
