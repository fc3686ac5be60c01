#include "form/controller.h"

#include <stdexcept>

#include "source/get_info_from_clips.h"
#include "startup/frame_rates.h"
#include "titles/create_fcp_xml.h"
#include "titles/sequence_templates.h"
#include "xml/failure.h"

namespace quillory {
namespace {

void show_document(Form& form, const std::string& path) {
  form.xmlIcon.setHidden(false);
  form.xmlIcon.setToolTip(path);
  form.xmlFileName.setStringValue(base_name(path));
  form.xmlIcon.setNeedsDisplay(true);
  form.xmlFileName.setNeedsDisplay(true);
}

}  // namespace

Controller::Controller(Form form, LineSink& out, OutputPaths paths)
    : form_(form), out_(out), paths_(std::move(paths)) {}

LoadedDocument Controller::parse_xml_file(const std::string& path) {
  return quillory::parse_xml_file(path, out_);
}

std::string Controller::empty_sequence_xml() const { return quillory::empty_sequence_xml(); }
std::string Controller::lower_third_xml() const { return quillory::lower_third_xml(); }
std::string Controller::tcr_filter_xml() const { return quillory::tcr_filter_xml(); }

std::vector<MediaFileRecord> Controller::get_files_info(const std::vector<xmlNode*>& files) {
  return quillory::get_files_info(files, out_);
}

std::optional<std::vector<std::string>> Controller::get_info_from_clips(const std::string& path) {
  OpenedSource opened = quillory::get_info_from_clips(
      path, built_in_template(), form_.tolerantCheckbox.state() == 1, out_);
  if (opened.status == OpenStatus::Unreadable) throw std::runtime_error(opened.error);
  if (opened.status == OpenStatus::NotXmeml) return std::nullopt;
  show_document(form_, path);
  fields_.templates_array = std::move(opened.templates);
  fields_.clips_array = std::move(opened.clips);
  fields_.frame_rates = std::move(opened.frame_rates);
  fields_.displayformats = {};
  fields_.frame_sizes = {};
  fields_.pixelaspectratios = {};
  fields_.anamorphics = {};
  if (opened.status == OpenStatus::Broken && opened.incomplete) {
    throw IncompleteInput(opened.error);
  }
  if (opened.status == OpenStatus::Broken) throw std::runtime_error(opened.error);
  if (!opened.rates_repeated) return std::nullopt;
  return fields_.frame_rates;
}

AssumptionReport Controller::create_fcp_xml(const std::optional<std::string>& output_path) {
  return quillory::create_fcp_xml(fields_.templates_array, fields_.clips_array,
                           read_title_settings(form_, fields_),
                           output_path ? output_path : paths_.TEMP_XML_FILE, out_);
}

bool Controller::set_sequence_rate(std::string_view type) {
  const auto rate = find_frame_rate_by_type(type);
  if (!rate) return false;
  fields_.ntsc = std::string(rate->ntsc);
  fields_.timebase = rate->timebase;
  return true;
}

TitleSettings read_title_settings(const Form& form, const ControllerFields& fields) {
  const std::array<std::pair<const TextField*, const PopUpMenu*>, 5> lines{{
      {&form.line1Label, &form.line1Popup},
      {&form.line2Label, &form.line2Popup},
      {&form.line3Label, &form.line3Popup},
      {&form.line4Label, &form.line4Popup},
      {&form.line5Label, &form.line5Popup},
  }};
  TitleSettings settings;
  settings.template_name = form.templatePopup.titleOfSelectedItem();
  settings.sequence_name = form.nameField.stringValue();
  settings.ntsc = fields.ntsc;
  settings.timebase = fields.timebase;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    settings.lines[i] = {lines[i].first->stringValue(), lines[i].second->titleOfSelectedItem()};
  }
  settings.timecode_reader = form.tcrCheckbox.state() == 1;
  settings.tolerant = form.tolerantCheckbox.state() == 1;
  settings.import_safe = form.importSafeCheckbox.state() == 1;
  return settings;
}

}  // namespace quillory
