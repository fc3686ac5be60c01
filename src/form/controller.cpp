#include "form/controller.h"

#include <algorithm>

#include "startup/frame_rates.h"
#include "titles/create_fcp_xml.h"
#include "titles/replace_file.h"
#include "titles/titles_over_sequence.h"
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
  const bool master_clips = !form.sourcePopup || *form.sourcePopup == kMasterClips;
  OpenedSource opened = quillory::get_info_from_clips(
      path, built_in_template(), form.tolerantCheckbox == kCheckboxOn, out,
      master_clips ? std::nullopt : form.sourcePopup);
  OpenOutcome outcome{opened.status, opened.error, opened.incomplete, {}};
  for (const auto& sequence : opened.sequences) outcome.sequences.push_back(sequence.name);
  if (outcome.status == OpenStatus::Unreadable || outcome.status == OpenStatus::NotXmeml ||
      outcome.status == OpenStatus::NoSequence) {
    return outcome;
  }
  display_ = FileDisplay{false, path, base_name(path)};
  source_ = std::move(opened);
  frame_size_ = sequence_video_format(source_.sequence, source_.clips).frame;
  return outcome;
}

void Controller::require_creatable() const {
  if (!can_create()) {
    fail(display_.xmlIconHidden
             ? "no document is open"
             : display_.xmlIconToolTip + " was not read whole; open it again once mended");
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
  AssumptionReport report =
      source_.sequence != nullptr
          ? create_titles_over_sequence(source_.templates, source_.clips, source_.sequence,
                                        title_settings(form), to, out)
          : quillory::create_fcp_xml(source_.templates, source_.clips, title_settings(form), to, out);
  report.warnings.insert(report.warnings.begin(), source_.warnings.begin(), source_.warnings.end());
  return report;
}

AssumptionReport Controller::create_fcp_xml(const Form& form, LineSink& out,
                                            const std::optional<std::string>& output_path) const {
  require_creatable();
  const auto& path = output_path ? output_path : paths_.TEMP_XML_FILE;
  // Replacing the export with its titles would lose the user's only copy of it.
  if (path && same_file(*path, display_.xmlIconToolTip)) {
    fail("the output " + *path + " is the source " + display_.xmlIconToolTip +
         " itself; nothing was written: choose another output");
  }
  return create(form, path, out);
}

TitleSettings Controller::title_settings(const Form& form) const {
  TitleSettings settings;
  settings.template_name = template_used(form.templatePopup);
  settings.sequence_name = form.nameField;
  if (source_.sequence != nullptr) {
    // Titles over a sequence run at the sequence's own rate, as written.
    settings.ntsc = source_.sequence_ntsc;
    settings.timebase = source_.sequence_timebase;
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
  return read_title_style(choose_template(source_.templates, template_used(form.templatePopup)));
}

AssumptionReport Controller::opening_report() const {
  AssumptionReport report = report_assumptions(source_.templates, source_.clips);
  report.warnings.insert(report.warnings.begin(), source_.warnings.begin(), source_.warnings.end());
  return report;
}

std::string Controller::document_sequence_name() const {
  return sequence_name_for(display_.xmlFileName);
}

}  // namespace quillory
