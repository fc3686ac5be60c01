#pragma once
// Makes a folder where a run is to write, with the missing folders above it.

#include <string>

namespace quillory {

// Makes `folder` and each missing level above it; with `owner_only`, the levels it makes are
// readable by their owner alone. Throws std::system_error with `failure`, the message that
// names the folder for the user, when it cannot.
void make_folder(const std::string& folder, const std::string& failure, bool owner_only = false);

}  // namespace quillory
