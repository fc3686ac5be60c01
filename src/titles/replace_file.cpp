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

  // mkstemp creates the file readable by its owner only: a file that is replaced keeps its
  // permissions, a new one gets those of a plain new file.
  void set_permissions_of(const std::string& target) {
    struct stat info {};
    mode_t mode = 0;
    if (::stat(target.c_str(), &info) == 0 && S_ISREG(info.st_mode)) {
      mode = info.st_mode & 07777;
    } else {
      const mode_t mask = ::umask(0);
      ::umask(mask);
      mode = 0666 & ~mask;
    }
    if (::fchmod(fd_, mode) != 0) fail("set the permissions of", path_, errno);
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

// What a write to `path` replaces: the file itself, or the file its symbolic links lead to, so
// that the links stay and the temporary file sits beside what the rename replaces.
std::string link_target(const std::string& path) {
  std::string target = path;
  for (int hops = 0; hops < 40; ++hops) {
    struct stat info {};
    if (::lstat(target.c_str(), &info) != 0 || !S_ISLNK(info.st_mode)) return target;
    std::vector<char> text(static_cast<std::size_t>(info.st_size) + 2);
    const ssize_t length = ::readlink(target.c_str(), text.data(), text.size());
    if (length < 0) fail("read the link", target, errno);
    std::string next(text.data(), static_cast<std::size_t>(length));
    const auto slash = target.rfind('/');
    if (next.empty()) fail("read the link", target, EINVAL);
    if (next.front() != '/' && slash != std::string::npos) next = target.substr(0, slash + 1) + next;
    target = next;
  }
  fail("replace", path, ELOOP);
}

}  // namespace

bool same_file(const std::string& first, const std::string& second) {
  struct stat a {};
  struct stat b {};
  return ::stat(first.c_str(), &a) == 0 && ::stat(second.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
         a.st_ino == b.st_ino;
}

void remove_unfinished_replacement() noexcept {
  if (unfinished != 0) ::unlink(unfinished_path);
}

namespace {

void on_stop(int signal_number) {
  remove_unfinished_replacement();
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
}

}  // namespace

void remove_unfinished_replacement_when_stopped() {
  for (int signal_number : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal_number, &on_stop);
}

void replace_file(const std::string& path, const std::function<bool(int fd)>& write) {
  const std::string target = link_target(path);
  TemporaryFile temporary(target);
  temporary.set_permissions_of(target);
  temporary.write_with(write);
  temporary.commit(target);
}

}  // namespace quillory
