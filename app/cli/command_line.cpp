#include "command_line.h"

#include <CLI/CLI.hpp>

#include "startup/frame_rates.h"
#include "source/get_info_from_clips.h"

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

std::array<std::string, 5> default_choices() {
  std::array<std::string, 5> choices;
  const LineSettings defaults = Form().lines;
  for (std::size_t i = 0; i < choices.size(); ++i) choices[i] = defaults[i].choice.value_or("");
  return choices;
}

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
  auto* list = app.add_flag("--list", options.list,
                            "print the source's templates, clips and rates; write nothing");
  app.add_flag("--json", options.json, "with --list: print the listing as one JSON document")
      ->needs(list);
  app.add_flag("--preview", options.preview, "print every clip's title text; write nothing");
  app.add_flag("--quiet", options.quiet, "leave out the progress lines");
  app.add_flag("--tolerant", options.tolerant,
               "accept incomplete exports (master clips without <start>/<end>, logging or a "
               "video item, more than 4 audio items, ...): assume what is missing and warn");
  app.add_flag("--import-safe", options.import_safe,
               "write ids, rates and file definitions so that importers which resolve ids "
               "(Premiere Pro, DaVinci Resolve, OpenTimelineIO) read every title and clip as "
               "written");
  app.set_version_flag("--version", "quillory " QUILLORY_VERSION);
  app.footer("Choice titles for --line1 ... --line5:" + quoted_list(CHOICE_TITLES) +
             "\nRates for --rate:" + rate_names() +
             "\nExit status: 0 written, 1 not an xmeml document or an error, 2 usage error.");
}

Form form_from_options(const Options& options) {
  Form form;
  form.templatePopup = options.template_name;
  form.ratePopup = options.rate;
  form.nameField = options.name.value_or(sequence_name_for(options.source));
  for (std::size_t i = 0; i < form.lines.size(); ++i) {
    form.lines[i].label = options.labels[i];
    form.lines[i].choice =
        options.lines[i].empty() ? std::nullopt : std::optional<std::string>(options.lines[i]);
  }
  form.tcrCheckbox = options.tcr ? kCheckboxOn : 0;
  form.tolerantCheckbox = options.tolerant ? kCheckboxOn : 0;
  form.importSafeCheckbox = options.import_safe ? kCheckboxOn : 0;
  return form;
}

}  // namespace quillory::cli
