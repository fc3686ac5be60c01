#pragma once
// The quillory command's options and the title settings they ask for.

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "form/form.h"

namespace CLI {
class App;
}

namespace quillory::cli {

// The choice titles of the five lines as a first launch sets them up.
std::array<std::string, 5> default_choices();

struct Options {
  std::vector<std::string> sources;
  // The source a run reads: one of `sources`, the first once parsed.
  std::string source;
  std::optional<std::string> sequence;
  std::optional<std::string> template_name;
  std::optional<std::string> name;
  std::array<std::string, 5> labels;
  std::array<std::string, 5> lines = default_choices();
  bool tcr = false;
  std::optional<std::string> rate;
  std::optional<std::string> output;
  // Each source's titles go to output_dir/NAME.xml; several sources that write need it.
  std::optional<std::string> output_dir;
  unsigned jobs = 0;  // sources worked on at once; 0: one per core
  bool list = false;
  bool json = false;
  // Where --list --json looks for a clip's media by name when it is not where the source says.
  std::optional<std::string> media_folder;
  bool preview = false;
  bool quiet = false;
  bool tolerant = false;
  bool import_safe = false;
};

// Says that `value` is none of `values` (the `kind`s, e.g. "template"), names the nearest as
// a likely meaning, and lists them all.
std::string unknown_value_message(const std::string& kind, const std::string& value,
                                  const std::vector<std::string>& values);

// Declares every option on `app`, bound to `options`.
void add_options(CLI::App& app, Options& options);

// The form the options fill in, the way a user fills in the window's controls; without
// --name the sequence is named after the source file, or the sequence titled.
Form form_from_options(const Options& options);

}  // namespace quillory::cli
