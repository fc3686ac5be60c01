#pragma once
// Start-up: prepares the libraries and the per-user folder "Ferncroft", and fixes the paths
// that every export writes to. A host runs it first, on its main thread, before any other
// thread reads or writes XML.

#include <optional>
#include <string>
#include <vector>

namespace quillory {

struct OutputPaths {
  // Both absent when no application-data folder is known (HOME and XDG_DATA_HOME unset).
  std::optional<std::string> APP_SUPPORT_SUBFOLDER;
  std::optional<std::string> TEMP_XML_FILE;
  // Beside it, where titles over an FCPXML document go.
  std::optional<std::string> TEMP_FCPXML_FILE;
};

// Runs start-up with the given folder list (the first entry is used). Creates the folder
// "Ferncroft" in it when missing; throws std::system_error naming the path when that fails.
OutputPaths start_up(const std::vector<std::string>& folders);

// Runs start-up with the user's own application-data folders.
OutputPaths start_up();

}  // namespace quillory
