#pragma once
// Replaces a file whole: the new content goes to a temporary file in the same folder, which is
// renamed over the target only once it is completely written. A crash or a full disk leaves
// the previous file as it was, never a partial one.

#include <string>
#include <string_view>

namespace quillory {

// Throws std::system_error naming the path when any step fails; the temporary file is removed.
void replace_file(const std::string& path, std::string_view content);

}  // namespace quillory
