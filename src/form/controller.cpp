#include "form/controller.h"

#include <algorithm>
#include <filesystem>

#include "startup/frame_rates.h"
#include "titles/create_titles.h"
#include "titles/fcpxml_titles_over_project.h"
#include "titles/fcpxml_writer.h"
#include "titles/replace_file.h"
#include "titles/sequence_templates.h"
#include "titles/title_prototype.h"
#include "source/user_message.h"
#include "xml/xml_text.h"

namespace quillory {

std::string not_xmeml_message(const std::string& path, const OpenOutcome& outcome) {
  return path + " is not an xmeml document (" +
         (outcome.error.empty() ? "its first node is not <xmeml>" : outcome.error) + ")";
}

Controller::Controller(OutputPaths paths) : paths_(std::move(paths)) {}

OpenOutcome Controller::get_info_from_clips(const std::string& path, const Form& form,
                                            LineSink& out) {
  OpenedSource opened = quillory::get_info_from_clips(
      path, built_in_template(), form.tolerantCheckbox == kCheckboxOn, out, form.sourcePopup);
  OpenOutcome outcome{opened.status, opened.error, opened.incomplete, {}};
  for (const auto& sequence : opened.sequences) outcome.sequences.push_back(sequence.name);
  if (outcome.status == OpenStatus::Unreadable || outcome.status == OpenStatus::NotXmeml ||
      outcome.status == OpenStatus::NoSequence) {
    return outcome;
  }
  document_path_ = path;
  source_ = std::move(opened);
  if (fcpxml()) {
    const FcpxmlFrame frame =
        source_.sequence != nullptr
            ? fcpxml_project_sequence_frame(source_.sequence)
            : fcpxml_project_frame(source_.clips, source_.document.get(), title_settings(form).rate);
    frame_size_ = {frame.width, frame.height};
  } else {
    frame_size_ = sequence_video_format(source_.sequence, source_.clips).frame;
  }
  return outcome;
}

void Controller::require_creatable() const {
  if (!can_create()) {
    fail(document_path_.empty() ? "no document is open"
                                : document_path_ + " was not read whole; open it again once mended");
  }
}

AssumptionReport Controller::create_fcp_xml(const Form& form, LineSink& out, int descriptor) const {
  return create(form, Destination::descriptor(descriptor), out);
}

namespace {

// Text of the form goes into the output as it stands: it must be text an XML document may hold.
void check_form_text(const Form& form) {
  const auto check = [](const std::string& what, const std::string& text) {
    if (const auto problem = xml::why_not_xml_text(text)) fail(what + " " + *problem + "; nothing was written");
  };
  check("the sequence name", form.nameField);
  for (std::size_t i = 0; i < form.lines.size(); ++i) {
    check("the label of line " + std::to_string(i + 1), form.lines[i].label);
  }
}

}  // namespace

AssumptionReport Controller::create(const Form& form, const Destination& to, LineSink& out) const {
  require_creatable();
  check_form_text(form);
  AssumptionReport report = create_titles(source_, title_settings(form), to, out);
  report.warnings.insert(report.warnings.begin(), source_.warnings.begin(), source_.warnings.end());
  return report;
}

AssumptionReport Controller::create_fcp_xml(const Form& form, LineSink& out,
                                            const std::optional<std::string>& output_path) const {
  require_creatable();
  const auto& path = output_path ? output_path : default_output();
  if (path) refuse_source(*path);
  return create(form, path, out);
}

const std::optional<std::string>& Controller::default_output() const {
  return fcpxml() ? paths_.TEMP_FCPXML_FILE : paths_.TEMP_XML_FILE;
}

void Controller::refuse_source(const std::string& path) const {
  // Replacing the export with its titles would lose the user's only copy of it.
  if (!document_path_.empty() && same_file(path, document_path_)) {
    fail("the output " + path + " is the source " + document_path_ +
         " itself; nothing was written: choose another output");
  }
}

void Controller::refuse_copy_target(const std::string& path) const {
  refuse_source(path);
  if (default_output() && same_file(path, *default_output())) {
    fail(path + " is the file the titles were written to, the one copied; nothing was written: "
         "choose another place");
  }
}

namespace {

// Whether something, a dangling link included, already has this name. A name that cannot be
// looked at counts as free: the save refuses it if it must.
bool name_taken(const std::filesystem::path& path) {
  std::error_code error;
  const auto type = std::filesystem::symlink_status(path, error).type();
  return type != std::filesystem::file_type::not_found && type != std::filesystem::file_type::none;
}

}  // namespace

std::string Controller::copy_path(const std::string& folder, const Form& form) const {
  std::string name = form.nameField.empty() ? "Titles" : form.nameField + " titles";
  std::replace(name.begin(), name.end(), '/', '-');  // one file name, not a path
  for (int number = 1;; ++number) {
    const std::string numbered = number == 1 ? name : name + " " + std::to_string(number);
    const std::filesystem::path path =
        std::filesystem::path(folder) / (numbered + (fcpxml() ? ".fcpxml" : ".xml"));
    if (!name_taken(path)) return path.string();
  }
}

FileDisplay Controller::display() const {
  if (document_path_.empty()) return {};
  return FileDisplay{false, document_path_, base_name(document_path_)};
}

TitleSettings Controller::title_settings(const Form& form) const {
  TitleSettings settings;
  settings.template_name = template_used(form.templatePopup);
  settings.sequence_name = form.nameField;
  if (source_.sequence != nullptr) {
    // Titles over a sequence run at the sequence's own rate.
    settings.rate = source_.sequence_rate;
  } else {
    const auto chosen = form.ratePopup ? find_frame_rate_by_type(*form.ratePopup) : std::nullopt;
    settings.set_rate(chosen ? *chosen : default_sequence_rate(source_.frame_rates));
  }
  settings.lines = form.lines;
  settings.timecode_reader = form.tcrCheckbox == kCheckboxOn;
  settings.tolerant = form.tolerantCheckbox == kCheckboxOn;
  settings.import_safe = form.importSafeCheckbox == kCheckboxOn;
  settings.source_digest = source_.digest;
  return settings;
}

std::vector<std::string> Controller::rate_choices() const {
  std::vector<std::string> rates;
  for (const auto& rate : source_.frame_rates) {
    // A document read only in part may name a rate more than once.
    if (std::find(rates.begin(), rates.end(), rate) == rates.end()) rates.push_back(rate);
  }
  if (rates.empty()) {
    for (const auto& rate : FRAME_RATES) rates.emplace_back(rate.type);
  }
  return rates;
}

std::string Controller::default_rate() const {
  return std::string(default_sequence_rate(source_.frame_rates).type);
}

std::optional<std::string> Controller::template_used(
    const std::optional<std::string>& selected) const {
  const auto& templates = source_.templates;
  const bool offered = selected && std::any_of(templates.begin(), templates.end(),
                                               [&](const auto& t) { return t.name == *selected; });
  if (offered) return selected;
  return templates.empty() ? std::nullopt : std::optional<std::string>(templates.front().name);
}

TitleStyle Controller::title_style(const Form& form) const {
  if (source_.templates.empty()) return read_title_style(built_in_template());
  return read_title_style(choose_template(source_.templates, template_used(form.templatePopup)),
                          frame_size_);
}

AssumptionReport Controller::opening_report() const {
  AssumptionReport report = report_assumptions(source_.templates, source_.clips);
  report.warnings.insert(report.warnings.begin(), source_.warnings.begin(), source_.warnings.end());
  return report;
}

std::string Controller::document_sequence_name() const {
  return sequence_name_for(document_path_);
}

}  // namespace quillory
