#pragma once
// The user's application-data folders, in order of preference, from the environment: on
// Linux $XDG_DATA_HOME when it is an absolute path, else $HOME/.local/share; on macOS
// $HOME/Library/Application Support. Empty when neither variable gives a folder. On Linux
// the missing levels of the folder are created (mode 0700); throws std::system_error naming
// the level that could not be.

#include <string>
#include <vector>

namespace quillory {

std::vector<std::string> application_support_folders();

// Replaces a leading "~" (alone or before "/") by $HOME; anything else is returned unchanged.
std::string expand_tilde(const std::string& path);

}  // namespace quillory
