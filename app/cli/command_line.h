#pragma once
// The quillory command's options and the title settings they ask for.

#include <array>
#include <optional>
#include <string>

#include "source/get_info_from_clips.h"
#include "titles/title_settings.h"

namespace CLI {
class App;
}

namespace quillory::cli {

// The choice titles of the five lines as a first launch sets them up.
std::array<std::string, 5> default_line_choices();

struct Options {
  std::string source;
  std::optional<std::string> template_name;
  std::optional<std::string> name;
  std::array<std::string, 5> labels;
  std::array<std::string, 5> lines = default_line_choices();
  bool tcr = false;
  std::optional<std::string> rate;
  std::optional<std::string> output;
  bool list = false;
  bool json = false;
  bool preview = false;
  bool quiet = false;
  bool tolerant = false;
  bool import_safe = false;
};

// Declares every option on `app`, bound to `options`.
void add_options(CLI::App& app, Options& options);

// The settings of the run: what the options give, the defaults for the rest.
TitleSettings title_settings(const Options& options, const OpenedSource& opened);

}  // namespace quillory::cli
