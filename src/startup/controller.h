#pragma once
// The system's public interface to a host: the controller of the window, holding the working
// lists, with the seven operations made available at start-up, in this order.

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "form/controller_fields.h"
#include "form/controls.h"
#include "form/line_sink.h"
#include "source/media_file_record.h"
#include "source/parse_xml_file.h"
#include "startup/startup.h"

namespace quillory {

class Controller {
 public:
  // The operations a host can call, in the order they are made available.
  static constexpr std::array<std::string_view, 7> operation_names{
      "parse_xml_file",   "empty_sequence_xml",  "lower_third_xml", "tcr_filter_xml",
      "get_files_info",   "get_info_from_clips", "create_fcp_xml",
  };

  // `form` and `out` are the host's and must outlive the controller.
  Controller(Form form, LineSink& out, OutputPaths paths);

  LoadedDocument parse_xml_file(const std::string& path);
  std::string empty_sequence_xml() const;
  std::string lower_third_xml() const;
  std::string tcr_filter_xml() const;
  std::vector<MediaFileRecord> get_files_info(const std::vector<xmlNode*>& files);
  std::optional<std::vector<std::string>> get_info_from_clips(const std::string& path);
  // Writes to TEMP_XML_FILE, or to `output_path` when one is given.
  void create_fcp_xml(const std::optional<std::string>& output_path = std::nullopt);

  // Sets `ntsc` and `timebase` from the frame-rate row named `type`; false (nothing changed)
  // when no row has that name.
  bool set_sequence_rate(std::string_view type);

  ControllerFields& fields() { return fields_; }
  const ControllerFields& fields() const { return fields_; }
  const OutputPaths& paths() const { return paths_; }
  Form& form() { return form_; }

 private:
  Form form_;
  LineSink& out_;
  OutputPaths paths_;
  ControllerFields fields_;
};

}  // namespace quillory
