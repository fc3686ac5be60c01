#pragma once
// The quillory command's options and how they fill the form.

#include <array>
#include <optional>
#include <string>

#include "form/memory_form.h"

namespace CLI {
class App;
}

namespace quillory::cli {

struct Options {
  std::string source;
  std::optional<std::string> template_name;
  std::optional<std::string> name;
  std::array<std::string, 5> labels;
  std::array<std::string, 5> lines{"Clip Name", "File Name", "Reel Name", "First Frame Timecode",
                                   "Date (13 March 2010), Time"};
  bool tcr = false;
  std::optional<std::string> rate;
  std::optional<std::string> output;
  bool list = false;
  bool preview = false;
};

// Declares every option on `app`, bound to `options`.
void add_options(CLI::App& app, Options& options);

// Sets the form's controls from the options.
void fill_form(const Options& options, MemoryForm& form);

}  // namespace quillory::cli
