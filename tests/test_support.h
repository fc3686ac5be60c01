#pragma once
// Helpers shared by the tests: temporary folders, files, XML tree comparison and running the
// quillory binary.

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "xml/xml_handles.h"
#include "xml_tree.h"

namespace quillory::test {

// A fresh folder under the system's temporary folder, removed with everything in it.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// Sets an environment variable for the lifetime of the guard, then restores it.
class EnvGuard {
 public:
  EnvGuard(const char* name, const char* value);  // value null: unset
  ~EnvGuard();
  EnvGuard(const EnvGuard&) = delete;
  EnvGuard& operator=(const EnvGuard&) = delete;

 private:
  void set(const char* value) const;
  std::string name_;
  std::optional<std::string> old_value_;
};

void write_file(const std::filesystem::path& path, const std::string& bytes);
std::string read_file(const std::filesystem::path& path);

// Parses XML text strictly; fails the test on any diagnostic.
xml::Document parse(const std::string& text);

// Why FCPXML `text` is not valid against Apple's DTD of its version in `dtd_folder`
// (FCPXMLv1_N.dtd), read and checked by libxml2; "" when it is.
std::string fcpxml_dtd_problems(const std::string& text, const std::filesystem::path& dtd_folder);

// What an XPath gives in `doc`: the text of each match followed by "|", or a count's value.
std::string texts(const xml::Document& doc, const char* path);

struct CommandResult {
  int exit_code = -1;
  std::string out;
  std::string err;
};

// Runs a program with arguments (no shell) and extra environment assignments ("NAME=value"),
// capturing standard output and standard error; `while_running` is given the process id
// before the run is waited for. A run ended by signal S exits with 128 + S.
CommandResult run_command(const std::vector<std::string>& argv,
                          const std::vector<std::string>& environment = {},
                          const std::function<void(int pid)>& while_running = {});

// A minimal xmeml master clip for tests; `extra` is inserted into the clip element.
std::string media_clip(const std::string& name, const std::string& file_id, int duration,
                       const std::string& file_definition = "", const std::string& ntsc = "FALSE",
                       int timebase = 25, const std::string& audio = "");
std::string file_definition(const std::string& id, const std::string& name,
                            const std::string& reel = "", const std::string& timecode = "",
                            const std::string& metadata = "");
std::string metadata(const std::string& key, const std::string& value);
std::string xmeml(const std::string& body);

}  // namespace quillory::test
