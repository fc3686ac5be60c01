#include "titles/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <cstdio>
#include <optional>
#include <random>
#include <semaphore>
#include <system_error>
#include <vector>

namespace quillory {
namespace {

// The temporary files being written, one slot each, kept where a signal handler may read
// them: several threads may replace files at once, and a signal may arrive on any of them.
// A slot's state says who may touch its name. Its owner writes the name while the slot is
// Claimed and publishes it as Named before the file exists; a handler removes a Named file only
// after taking the slot as Removing, so that the owner can neither rename the file nor reuse
// the name meanwhile.
enum SlotState : int { kFree, kClaimed, kNamed, kRemoving };
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler must not take a lock");

struct Slot {
  std::atomic<int> state{kFree};
  char path[4096];
};
// As many files as a run writes at once; more writers sleep until one is released.
constexpr std::ptrdiff_t kSlots = 64;
std::array<Slot, kSlots> slots;
std::counting_semaphore<kSlots> free_slots{kSlots};

[[noreturn]] void fail(const std::string& what, const std::string& path, int error) {
  throw std::system_error(error, std::generic_category(), "quillory: cannot " + what + " " + path);
}

// A handler on another thread is removing the slot's file and ends the process once it has:
// the owner must leave the file alone until then.
[[noreturn]] void wait_for_the_end() {
  for (;;) ::pause();
}

// Moves an owned slot from `from` to `to`, unless a handler took it.
void hand_over(Slot& slot, int from, int to) {
  if (!slot.state.compare_exchange_strong(from, to)) wait_for_the_end();
}

// Holding one of the free slots' count, a writer finds one free slot among them.
Slot& claim_slot() {
  free_slots.acquire();
  for (;;) {
    for (Slot& slot : slots) {
      int free = kFree;
      if (slot.state.compare_exchange_strong(free, kClaimed)) return slot;
    }
  }
}

// Six letters or digits that no other writer is likely to pick for the same target.
void random_suffix(char* at) {
  static constexpr char kLetters[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
  thread_local std::mt19937_64 engine{std::random_device{}()};
  std::uniform_int_distribution<std::size_t> pick(0, sizeof kLetters - 2);
  for (int i = 0; i < 6; ++i) at[i] = kLetters[pick(engine)];
}

// The permissions a replaced file keeps; none for a new file.
std::optional<mode_t> kept_mode(const std::string& target) {
  struct stat info {};
  if (::stat(target.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  return info.st_mode & 07777;
}

// Removes the temporary file unless the rename has taken it over.
class TemporaryFile {
 public:
  // `mode` as open(2) takes it. The umask is the process's: reading it means changing it,
  // which would race with other writers, so a new file's mode comes from open itself.
  TemporaryFile(const std::string& target, mode_t mode)
      : path_(target + ".XXXXXX"),  // allocated now: taking the final name must not throw
        slot_(claim_slot()) {
    if (path_.size() >= sizeof slot_.path) {
      release();
      fail("create a temporary file beside", target, ENAMETOOLONG);
    }
    std::memcpy(slot_.path, path_.c_str(), path_.size() + 1);
    char* suffix = slot_.path + path_.size() - 6;
    int error = EEXIST;
    for (int attempt = 0; attempt < 100 && fd_ < 0 && error == EEXIST; ++attempt) {
      random_suffix(suffix);
      // Named before the file exists, so that a signal at any moment finds the file to remove.
      hand_over(slot_, kClaimed, kNamed);
      fd_ = ::open(slot_.path, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
      error = errno;
      if (fd_ < 0) hand_over(slot_, kNamed, kClaimed);  // another file's name, or no file
    }
    if (fd_ < 0) {
      release();
      fail("create a temporary file beside", target, error);
    }
    path_.assign(slot_.path);
  }
  ~TemporaryFile() {
    if (fd_ >= 0) ::close(fd_);
    if (!renamed_) {
      hand_over(slot_, kNamed, kClaimed);
      ::unlink(path_.c_str());
    }
    release();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  void write_with(const std::function<bool(int)>& write) {
    errno = 0;
    if (!write(fd_)) fail("write", path_, errno != 0 ? errno : EIO);
  }

  void set_mode(mode_t mode) {
    if (::fchmod(fd_, mode) != 0) fail("set the permissions of", path_, errno);
  }

  void commit(const std::string& target) {
    if (::fsync(fd_) != 0) fail("write", path_, errno);
    const int fd = fd_;
    fd_ = -1;
    if (::close(fd) != 0) fail("write", path_, errno);
    hand_over(slot_, kNamed, kClaimed);
    if (::rename(path_.c_str(), target.c_str()) != 0) {
      const int error = errno;
      hand_over(slot_, kClaimed, kNamed);  // still ours to remove
      fail("replace", target, error);
    }
    renamed_ = true;
  }

 private:
  void release() {
    slot_.state.store(kFree);
    free_slots.release();
  }

  std::string path_;
  Slot& slot_;
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
  for (Slot& slot : slots) {
    int named = kNamed;
    if (slot.state.compare_exchange_strong(named, kRemoving)) ::unlink(slot.path);
  }
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
  // A replaced file keeps its permissions: its replacement is its owner's alone until it has
  // them, since whoever opens it meanwhile could read all that is written to it later.
  const std::optional<mode_t> kept = kept_mode(target);
  TemporaryFile temporary(target, kept ? 0600 : 0666);
  if (kept) temporary.set_mode(*kept);
  temporary.write_with(write);
  temporary.commit(target);
}

}  // namespace quillory
