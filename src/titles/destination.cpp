#include "titles/destination.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "titles/replace_file.h"
#include "source/user_message.h"

namespace quillory {
namespace {

bool is_stream(mode_t mode) { return S_ISCHR(mode) || S_ISFIFO(mode) || S_ISSOCK(mode); }

[[noreturn]] void fail_on(const std::string& what, const std::string& where, int error) {
  throw std::system_error(error != 0 ? error : EIO, std::generic_category(),
                          "quillory: cannot " + what + " " + where);
}

void write_into(int fd, const std::function<bool(int fd)>& write, const std::string& where) {
  errno = 0;
  if (!write(fd)) fail_on("write the titles to", where, errno);
}

// A socket has no file to open: it is one this process holds already (a shell's /dev/fd/N),
// or one listening on the file system, which is connected to.
int open_socket(const std::string& path) {
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", ignored)) {
    const std::string name = entry.path().filename().string();
    int held = -1;
    std::from_chars(name.data(), name.data() + name.size(), held);
    if (held >= 0 && names_stream(path, held)) return ::fcntl(held, F_DUPFD_CLOEXEC, 0);
  }
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    errno = ENAMETOOLONG;
    return -1;
  }
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd >= 0 && ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    const int error = errno;
    ::close(fd);
    errno = error;
    return -1;
  }
  return fd;
}

// A device, pipe or socket opened for writing, closed with it.
class Stream {
 public:
  explicit Stream(const std::string& path) : path_(path) {
    struct stat info {};
    fd_ = ::stat(path.c_str(), &info) == 0 && S_ISSOCK(info.st_mode)
              ? open_socket(path)
              : ::open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (fd_ < 0) fail_on("open", path, errno);
  }
  ~Stream() {
    if (fd_ >= 0) ::close(fd_);
  }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  void write_with(const std::function<bool(int fd)>& write) {
    write_into(fd_, write, path_);
    const int fd = fd_;
    fd_ = -1;
    if (::close(fd) != 0) fail_on("write the titles to", path_, errno);
  }

 private:
  std::string path_;
  int fd_ = -1;
};

}  // namespace

void Destination::require_known() const {
  if (!path && fd < 0) {
    fail("no output folder is known: set HOME (or XDG_DATA_HOME to an absolute path) so that "
         "titles can be written to its Ferncroft folder");
  }
}

Delivery delivery_to(const std::string& path) {
  struct stat info {};
  // A path with no file yet, or one that cannot be looked at, is for the replacement to create
  // or to report.
  if (::stat(path.c_str(), &info) != 0 || S_ISREG(info.st_mode)) return Delivery::Replacement;
  if (is_stream(info.st_mode)) return Delivery::Stream;
  const char* what = S_ISDIR(info.st_mode)   ? "a folder"
                     : S_ISBLK(info.st_mode) ? "a block device"
                                             : "neither a file nor a device";
  fail("the output " + path + " is " + what +
       "; nothing was written: name a file, or a device or pipe to write into");
}

bool names_stream(const std::string& path, int fd) {
  struct stat named {};
  struct stat open {};
  return ::stat(path.c_str(), &named) == 0 && ::fstat(fd, &open) == 0 &&
         is_stream(named.st_mode) && named.st_dev == open.st_dev && named.st_ino == open.st_ino;
}

void deliver(const Destination& to, const std::function<bool(int fd)>& write) {
  to.require_known();
  if (to.fd >= 0) {
    write_into(to.fd, write, "standard output");
  } else if (delivery_to(*to.path) == Delivery::Stream) {
    Stream(*to.path).write_with(write);
  } else {
    replace_file(*to.path, write);
  }
}

}  // namespace quillory
