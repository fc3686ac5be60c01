#include "command_line.h"

#include <CLI/CLI.hpp>

#include "source/get_info_from_clips.h"
#include "startup/frame_rates.h"
#include "titles/compose_title_text.h"

namespace quillory::cli {
namespace {

std::string quoted_list(auto&& names) {
  std::string text;
  for (std::string_view name : names) text += "\n  \"" + std::string(name) + "\"";
  return text;
}

std::string rate_names() {
  std::string text;
  for (const auto& rate : FRAME_RATES) text += "\n  \"" + std::string(rate.type) + "\"";
  return text;
}

// Accepts only the display name of a known frame rate.
struct RateName : CLI::Validator {
  RateName() {
    name_ = "RATE";
    func_ = [](const std::string& value) {
      if (find_frame_rate_by_type(value)) return std::string();
      return "unknown rate \"" + value + "\"; the rates are:" + rate_names();
    };
  }
};

}  // namespace

void add_options(CLI::App& app, Options& options) {
  app.add_option("SOURCE", options.source, "the xmeml export to read")->required();
  app.add_option("--template", options.template_name,
                 "title template to use (default: the first, \"Default\")");
  app.add_option("--name", options.name,
                 "name of the new sequence (default: the source file's name)");
  for (std::size_t i = 0; i < 5; ++i) {
    const std::string n = std::to_string(i + 1);
    app.add_option("--label" + n, options.labels[i], "label text of title line " + n);
    app.add_option("--line" + n, options.lines[i],
                   "what title line " + n + " shows (a choice title; \"\" for nothing)")
        ->capture_default_str();
  }
  app.add_flag("--tcr", options.tcr, "add a Timecode Reader filter to every clip");
  app.add_option("--rate", options.rate, "frame rate of the new sequence (default: the first "
                                         "rate of the source's clips)")
      ->check(RateName());
  app.add_option("--output", options.output,
                 "write the sequence here instead of the Ferncroft folder");
  app.add_flag("--list", options.list,
                "print the source's templates, clips and rates; write nothing");
  app.add_flag("--preview", options.preview, "print every clip's title text; write nothing");
  app.set_version_flag("--version", "quillory " QUILLORY_VERSION);
  app.footer("Choice titles for --line1 ... --line5:" + quoted_list(CHOICE_TITLES) +
             "\nRates for --rate:" + rate_names() +
             "\nExit status: 0 written, 1 not an xmeml document or an error, 2 usage error.");
}

void fill_form(const Options& options, MemoryForm& form) {
  form.templatePopup.selected = options.template_name;
  form.nameField.value = options.name ? *options.name : sequence_name_for(options.source);
  for (std::size_t i = 0; i < 5; ++i) {
    form.line_labels[i].value = options.labels[i];
    form.line_popups[i].selected =
        options.lines[i].empty() ? std::nullopt : std::optional<std::string>(options.lines[i]);
  }
  form.tcrCheckbox.value = options.tcr ? 1 : 0;
}

}  // namespace quillory::cli
