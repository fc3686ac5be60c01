#include "command_line.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>

#include "startup/frame_rates.h"
#include "source/get_info_from_clips.h"
#include "xml/xml_text.h"

namespace quillory::cli {
namespace {

std::string quoted_list(auto&& names) {
  std::string text;
  for (std::string_view name : names) text += "\n  \"" + std::string(name) + "\"";
  return text;
}

std::vector<std::string> rate_names() {
  std::vector<std::string> names;
  for (const auto& rate : FRAME_RATES) names.emplace_back(rate.type);
  return names;
}

std::vector<std::string> line_choices() {
  std::vector<std::string> choices(CHOICE_TITLES.begin(), CHOICE_TITLES.end());
  choices.emplace_back();  // a line that shows nothing
  return choices;
}

std::string lower(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return result;
}

// How many single-byte edits turn one text into the other, letter case aside.
std::size_t edit_distance(std::string_view a, std::string_view b) {
  const std::string x = lower(a), y = lower(b);
  std::vector<std::size_t> row(y.size() + 1);
  for (std::size_t j = 0; j <= y.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= x.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= y.size(); ++j) {
      const std::size_t above = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (x[i - 1] == y[j - 1] ? 0 : 1)});
      diagonal = above;
    }
  }
  return row[y.size()];
}

// Accepts exactly one of `values`.
struct OneOf : CLI::Validator {
  OneOf(std::string kind, std::vector<std::string> values) {
    name_ = kind;
    func_ = [kind, values](const std::string& value) {
      return std::find(values.begin(), values.end(), value) != values.end()
                 ? std::string()
                 : unknown_value_message(kind, value, values);
    };
  }
};

// Accepts only text that may stand in an XML document: it goes into the output.
struct XmlText : CLI::Validator {
  XmlText() {
    name_ = "TEXT";
    func_ = [](const std::string& value) {
      const auto problem = xml::why_not_xml_text(value);
      return problem ? "the text " + *problem : std::string();
    };
  }
};

}  // namespace

std::string unknown_value_message(const std::string& kind, const std::string& value,
                                  const std::vector<std::string>& values) {
  std::string message = "unknown " + kind + " \"" + value + "\"";
  const auto nearest = std::min_element(values.begin(), values.end(), [&](const auto& a, const auto& b) {
    return edit_distance(value, a) < edit_distance(value, b);
  });
  if (nearest != values.end() && edit_distance(value, *nearest) <= std::max<std::size_t>(3, value.size() / 3)) {
    message += "; did you mean \"" + *nearest + "\"?";
  }
  return message + " The " + kind + "s are:" + quoted_list(values);
}

std::array<std::string, 5> default_choices() {
  std::array<std::string, 5> choices;
  const LineSettings defaults = Form().lines;
  for (std::size_t i = 0; i < choices.size(); ++i) choices[i] = defaults[i].choice.value_or("");
  return choices;
}

void add_options(CLI::App& app, Options& options) {
  app.add_option("SOURCE", options.sources,
                 "the exports to read: xmeml files, FCPXML files (.fcpxml) or bundles (.fcpxmld)")
      ->required()
      ->each([&options](const std::string& source) {
        if (options.source.empty()) options.source = source;
      });
  auto* sequence = app.add_option(
      "--sequence", options.sequence,
      "title every shot of this top-level sequence (an FCPXML project) of the source instead "
      "of its master clips: the sequence is copied, with a track (a lane) of titles above it");
  app.add_option("--template", options.template_name,
                 "title template to use (default: the first, \"Default\")");
  app.add_option("--name", options.name,
                 "name of the new sequence (default: the source file's name)")
      ->check(XmlText());
  for (std::size_t i = 0; i < 5; ++i) {
    const std::string n = std::to_string(i + 1);
    app.add_option("--label" + n, options.labels[i], "label text of title line " + n)
        ->check(XmlText());
    app.add_option("--line" + n, options.lines[i],
                   "what title line " + n + " shows (a choice title; \"\" for nothing)")
        ->capture_default_str()
        ->check(OneOf("choice", line_choices()));
  }
  app.add_flag("--tcr", options.tcr,
               "add a Timecode Reader filter to every clip (xmeml only: FCPXML has none)");
  app.add_option("--rate", options.rate, "frame rate of the new sequence (default: the first "
                                         "rate of the source's clips)")
      ->check(OneOf("rate", rate_names()))
      ->excludes(sequence);
  auto* output = app.add_option("--output", options.output,
                                "write the sequence here instead of the Ferncroft folder");
  app.add_option("--output-dir", options.output_dir,
                 "write each source's titles to DIR/NAME.xml (NAME.fcpxml for an FCPXML source), "
                 "NAME its file name without the extension (needed with several sources)")
      ->option_text("DIR")
      ->excludes(output);
  app.add_option("--jobs", options.jobs,
                 "work on N sources at once (default: the number of cores)")
      ->option_text("N")
      ->check(CLI::Range(1U, 1024U));
  auto* list = app.add_flag("--list", options.list,
                            "print the source's templates, clips and rates; write nothing");
  app.add_flag("--json", options.json, "with --list: print the listing as one JSON document")
      ->needs(list);
  app.add_option("--media-folder", options.media_folder,
                 "with --list --json: look for each clip's media file by name below DIR where it "
                 "is not where the source says")
      ->option_text("DIR")
      ->check(CLI::ExistingDirectory)
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
             "\nRates for --rate:" + quoted_list(rate_names()) +
             "\nExit status: 0 written (every source), 1 not an xmeml document or an error (any "
             "source), 2 usage error.");
}

Form form_from_options(const Options& options) {
  Form form;
  form.sourcePopup = options.sequence;
  form.templatePopup = options.template_name;
  form.ratePopup = options.rate;
  // A new sequence is named after the source; a copied one keeps its own name.
  form.nameField = options.name.value_or(options.sequence ? *options.sequence
                                                          : sequence_name_for(options.source));
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
