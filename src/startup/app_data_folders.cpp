#include "startup/app_data_folders.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace quillory {
namespace {

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

#ifndef __APPLE__
// Makes each missing level of `folder` readable by its owner alone, as programs that write to
// the data folder are to make it on a new account.
void create_missing_levels(const std::string& folder) {
  for (std::size_t slash = folder.find('/', 1); ; slash = folder.find('/', slash + 1)) {
    const std::string level = folder.substr(0, slash);
    struct stat info {};
    if (::stat(level.c_str(), &info) != 0 && ::mkdir(level.c_str(), 0700) != 0 && errno != EEXIST) {
      throw std::system_error(errno, std::generic_category(),
                              "quillory: cannot create the data folder " + level +
                                  " (set XDG_DATA_HOME to a folder you can write)");
    }
    if (slash == std::string::npos) return;
  }
}
#endif

}  // namespace

std::vector<std::string> application_support_folders() {
  const std::string home = environment("HOME");
#ifdef __APPLE__
  if (home.empty()) return {};
  return {home + "/Library/Application Support"};
#else
  // The platform's lookup always names a folder that exists; so does this one.
  const std::string data_home = environment("XDG_DATA_HOME");
  std::string folder;
  if (!data_home.empty() && data_home.front() == '/') {
    folder = data_home;
  } else if (!home.empty()) {
    folder = home + "/.local/share";
  } else {
    return {};
  }
  create_missing_levels(folder);
  return {folder};
#endif
}

std::string expand_tilde(const std::string& path) {
  if (path.empty() || path.front() != '~' || (path.size() > 1 && path[1] != '/')) return path;
  const std::string home = environment("HOME");
  if (home.empty()) return path;
  return home + path.substr(1);
}

}  // namespace quillory
