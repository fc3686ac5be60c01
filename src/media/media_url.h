#pragma once
// A media file's location as interchange documents write it: a file URL such as
// "file://localhost/Volumes/DAILIES%20RAID/A001C003.mov", percent-encoded.

#include <optional>
#include <string>
#include <string_view>

namespace quillory::media {

// The local path a file URL names ("file://HOST/PATH" or "file:/PATH"), its percent-escapes
// decoded; a plain absolute path is taken as it stands. None for any other scheme or for
// text that names no path.
std::optional<std::string> path_from_url(std::string_view url);

// The last component of a path, with '/' or '\' between components.
std::string file_name_of(std::string_view path);

}  // namespace quillory::media
