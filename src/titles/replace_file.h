#pragma once
// Replaces a file whole: the new content goes to a temporary file in the same folder, which is
// renamed over the target only once it is completely written. A crash or a full disk leaves
// the previous file as it was, never a partial one. A symbolic link is followed: its target is
// replaced, and the link stays. A replaced file keeps its permissions.

#include <functional>
#include <string>

namespace quillory {

// `write` writes the new content to the file descriptor it is given and returns false when that
// failed. Throws std::system_error naming the path when any step fails; the temporary file is
// then removed and the previous file stays.
void replace_file(const std::string& path, const std::function<bool(int fd)>& write);

// Whether both paths name one file (the same device and inode, after following links).
bool same_file(const std::string& first, const std::string& second);

// Removes the temporary files of the replacements under way, if there are any (a run may
// write several at once, in threads). Safe to call from a signal handler on any thread: a host
// stopped by a signal calls it so that no temporary file is left. The process is to end right
// after it: a replacement whose file it removed waits for that end.
void remove_unfinished_replacement() noexcept;

// Installs handlers for SIGINT, SIGTERM and SIGHUP that remove that temporary file and then
// let the signal take its usual course: a host stopped while writing leaves the previous
// output and no temporary file.
void remove_unfinished_replacement_when_stopped();

}  // namespace quillory
