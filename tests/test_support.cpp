#include "test_support.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>

#include "xml/read_xml.h"

namespace quillory::test {

TempDir::TempDir() {
  std::random_device random;
  path_ = std::filesystem::temp_directory_path() /
          ("quillory-test-" + std::to_string(::getpid()) + "-" + std::to_string(random()));
  std::filesystem::create_directories(path_);
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                               std::filesystem::perm_options::add, ignored);
  std::filesystem::remove_all(path_, ignored);
}

EnvGuard::EnvGuard(const char* name, const char* value) : name_(name) {
  const char* old = std::getenv(name);
  had_value_ = old != nullptr;
  if (had_value_) old_value_ = old;
  if (value != nullptr) {
    ::setenv(name, value, 1);
  } else {
    ::unsetenv(name);
  }
}

EnvGuard::~EnvGuard() {
  if (had_value_) {
    ::setenv(name_.c_str(), old_value_.c_str(), 1);
  } else {
    ::unsetenv(name_.c_str());
  }
}

void write_file(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  ASSERT_TRUE(file.good()) << "cannot write " << path.string();
}

std::string read_file(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

xml::Document parse(const std::string& text) {
  xml::ParsedXml parsed = xml::read_xml(text, "test document", 0);
  EXPECT_TRUE(parsed.diagnostics.empty())
      << (parsed.diagnostics.empty() ? "" : xml::describe(parsed.diagnostics[0], "test document"));
  return std::move(parsed.document);
}

CommandResult run_command(const std::vector<std::string>& argv,
                          const std::vector<std::string>& environment, int timeout_seconds) {
  int out_pipe[2];
  int err_pipe[2];
  if (::pipe(out_pipe) != 0 || ::pipe(err_pipe) != 0) return {};
  const pid_t pid = ::fork();
  if (pid == 0) {
    ::dup2(out_pipe[1], 1);
    ::dup2(err_pipe[1], 2);
    ::close(out_pipe[0]);
    ::close(err_pipe[0]);
    for (const auto& assignment : environment) ::putenv(const_cast<char*>(assignment.c_str()));
    std::vector<char*> args;
    for (const auto& arg : argv) args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    ::execv(args[0], args.data());
    ::_exit(127);
  }
  ::close(out_pipe[1]);
  ::close(err_pipe[1]);
  CommandResult result;
  pollfd fds[2] = {{out_pipe[0], POLLIN, 0}, {err_pipe[0], POLLIN, 0}};
  std::string* sinks[2] = {&result.out, &result.err};
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(timeout_seconds);
  int open_pipes = 2;
  while (open_pipes > 0 && std::chrono::steady_clock::now() < deadline) {
    if (::poll(fds, 2, 1000) <= 0) continue;
    for (int i = 0; i < 2; ++i) {
      if (fds[i].fd < 0 || (fds[i].revents & (POLLIN | POLLHUP)) == 0) continue;
      char buffer[65536];
      const ssize_t n = ::read(fds[i].fd, buffer, sizeof buffer);
      if (n > 0) {
        sinks[i]->append(buffer, static_cast<std::size_t>(n));
      } else {
        ::close(fds[i].fd);
        fds[i].fd = -1;
        --open_pipes;
      }
    }
  }
  if (open_pipes > 0) ::kill(pid, SIGKILL);
  for (auto& fd : fds) {
    if (fd.fd >= 0) ::close(fd.fd);
  }
  int status = 0;
  ::waitpid(pid, &status, 0);
  result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return result;
}

std::string metadata(const std::string& key, const std::string& value) {
  return "<metadata><storage>QuickTime</storage><key>" + key + "</key><value>" + value +
         "</value></metadata>";
}

std::string file_definition(const std::string& id, const std::string& name,
                            const std::string& reel, const std::string& timecode,
                            const std::string& metadata_entries) {
  std::string tc;
  if (!reel.empty() || !timecode.empty()) {
    tc = "<timecode><rate><ntsc>FALSE</ntsc><timebase>25</timebase></rate>";
    if (!timecode.empty()) tc += "<string>" + timecode + "</string>";
    if (!reel.empty()) tc += "<reel><name>" + reel + "</name></reel>";
    tc += "</timecode>";
  }
  return "<file id=\"" + id + "\"><name>" + name + "</name><pathurl>file://localhost/media/" +
         name + "</pathurl>" + tc + metadata_entries + "</file>";
}

std::string media_clip(const std::string& name, const std::string& file_id, int duration,
                       const std::string& file_def, const std::string& ntsc, int timebase,
                       const std::string& audio) {
  const std::string file = file_def.empty() ? "<file id=\"" + file_id + "\"/>" : file_def;
  const std::string d = std::to_string(duration);
  return "<clip id=\"" + name + "\"><name>" + name + "</name><duration>" + d +
         "</duration><rate><ntsc>" + ntsc + "</ntsc><timebase>" + std::to_string(timebase) +
         "</timebase></rate><logginginfo><scene>S-" + name + "</scene><shottake>T-" + name +
         "</shottake><lognote>N-" + name +
         "</lognote></logginginfo><media><video><track><clipitem id=\"" + name +
         "-v\"><name>" + name + "</name><duration>" + d + "</duration><start>-1</start><end>-1</end>" +
         file +
         "<link><linkclipref>" + name + "-v</linkclipref><mediatype>video</mediatype><trackindex>1"
         "</trackindex><clipindex>1</clipindex><groupindex>1</groupindex></link></clipitem>"
         "</track></video><audio>" + audio + "</audio></media></clip>";
}

std::string xmeml(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE xmeml>\n<xmeml version=\"4\">\n" +
         body + "\n</xmeml>\n";
}

}  // namespace quillory::test
