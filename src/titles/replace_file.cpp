#include "titles/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <cstdio>
#include <system_error>
#include <vector>

namespace quillory {
namespace {

// The temporary file being written, kept where a signal handler may read it: a fixed buffer
// and a flag that says whether it holds a name.
char unfinished_path[4096];
volatile std::sig_atomic_t unfinished = 0;

[[noreturn]] void fail(const std::string& what, const std::string& path, int error) {
  throw std::system_error(error, std::generic_category(), "quillory: cannot " + what + " " + path);
}

// Removes the temporary file unless the rename has taken it over.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target) : path_(target + ".XXXXXX") {
    // The name is made in the buffer that a signal handler reads, flagged before the file
    // exists, so that a signal at any moment finds the file it has to remove.
    if (path_.size() >= sizeof unfinished_path) fail("create a temporary file beside", target, ENAMETOOLONG);
    std::memcpy(unfinished_path, path_.c_str(), path_.size() + 1);
    unfinished = 1;
    fd_ = ::mkstemp(unfinished_path);
    if (fd_ < 0) {
      unfinished = 0;
      fail("create a temporary file beside", target, errno);
    }
    path_.assign(unfinished_path);
  }
  ~TemporaryFile() {
    unfinished = 0;
    if (fd_ >= 0) ::close(fd_);
    if (!renamed_) ::unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void write_with(const std::function<bool(int)>& write) {
    errno = 0;
    if (!write(fd_)) fail("write", path_, errno != 0 ? errno : EIO);
  }

  // mkstemp creates the file readable by its owner only; an output file is an ordinary
  // document, so give it the permissions a plain new file would get.
  void set_default_permissions() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    if (::fchmod(fd_, 0666 & ~mask) != 0) fail("set the permissions of", path_, errno);
  }

  void commit(const std::string& target) {
    if (::fsync(fd_) != 0) fail("write", path_, errno);
    const int fd = fd_;
    fd_ = -1;
    if (::close(fd) != 0) fail("write", path_, errno);
    unfinished = 0;
    if (::rename(path_.c_str(), target.c_str()) != 0) fail("replace", target, errno);
    renamed_ = true;
  }

 private:
  std::string path_;
  int fd_ = -1;
  bool renamed_ = false;
};

}  // namespace

void remove_unfinished_replacement() noexcept {
  if (unfinished != 0) ::unlink(unfinished_path);
}

void replace_file(const std::string& path, const std::function<bool(int fd)>& write) {
  TemporaryFile temporary(path);
  temporary.set_default_permissions();
  temporary.write_with(write);
  temporary.commit(path);
}

}  // namespace quillory
