#include "startup/startup.h"

#include <libxml/parser.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "startup/app_data_folders.h"

namespace quillory {
namespace {

bool is_directory(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

}  // namespace

OutputPaths start_up(const std::vector<std::string>& folders) {
  // Once, before any other thread uses libxml2: the thread that first does holds the
  // process-wide settings, and every other gets its own.
  xmlInitParser();
  OutputPaths paths;
  if (folders.empty()) return paths;
  const std::string folder = expand_tilde(folders.front()) + "/Ferncroft";
  if (!is_directory(folder) && ::mkdir(folder.c_str(), 0777) != 0) {
    throw std::system_error(errno, std::generic_category(),
                            "quillory: cannot create the folder " + folder +
                                " (set XDG_DATA_HOME to a folder you can write)");
  }
  paths.APP_SUPPORT_SUBFOLDER = folder;
  paths.TEMP_XML_FILE = folder + "/Quillory.xml";
  paths.TEMP_FCPXML_FILE = folder + "/Quillory.fcpxml";
  return paths;
}

OutputPaths start_up() { return start_up(application_support_folders()); }

}  // namespace quillory
