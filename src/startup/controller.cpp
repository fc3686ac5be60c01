#include "startup/controller.h"

#include "source/get_info_from_clips.h"
#include "titles/create_fcp_xml.h"
#include "startup/frame_rates.h"
#include "titles/sequence_templates.h"

namespace quillory {

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
  return quillory::get_info_from_clips(path, form_, fields_, out_);
}

void Controller::create_fcp_xml(const std::optional<std::string>& output_path) {
  quillory::create_fcp_xml(form_, fields_, output_path ? output_path : paths_.TEMP_XML_FILE,
                           out_);
}

bool Controller::set_sequence_rate(std::string_view type) {
  const auto rate = find_frame_rate_by_type(type);
  if (!rate) return false;
  fields_.ntsc = std::string(rate->ntsc);
  fields_.timebase = rate->timebase;
  return true;
}

}  // namespace quillory
