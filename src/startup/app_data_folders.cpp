#include "startup/app_data_folders.h"

#include <cstdlib>

#include "startup/make_folder.h"

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
  // Readable by its owner alone, as programs that write to the data folder are to make it on
  // a new account.
  make_folder(folder,
              "quillory: cannot create the data folder " + folder +
                  " (set XDG_DATA_HOME to a folder you can write)",
              true);
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
