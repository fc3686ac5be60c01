#pragma once
// The window controller as the system was designed around: named controls that the operations
// read and a file display that they update, with the working lists kept in its fields between
// opening a document and creating titles. It adapts those operations to the core's functions
// on values; hosts may use either.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "form/controller_fields.h"
#include "form/controls.h"
#include "source/media_file_record.h"
#include "source/parse_xml_file.h"
#include "startup/startup.h"
#include "source/assumption_report.h"
#include "titles/title_settings.h"
#include "xml/line_sink.h"

namespace quillory {

class Controller {
 public:
  // `form` and `out` are the host's and must outlive the controller.
  Controller(Form form, LineSink& out, OutputPaths paths);

  // The operations, in the order they are made available at start-up.
  LoadedDocument parse_xml_file(const std::string& path);
  std::string empty_sequence_xml() const;
  std::string lower_third_xml() const;
  std::string tcr_filter_xml() const;
  std::vector<MediaFileRecord> get_files_info(const std::vector<xmlNode*>& files);
  // None when the document's root is not "xmeml" (nothing changes then) or when no rate name
  // was met twice; otherwise the de-duplicated `frame_rates`. Throws when the document cannot
  // be read, or when a clip lacks something; what the clips before it gave stays in the fields
  // and the display shows the new document.
  std::optional<std::vector<std::string>> get_info_from_clips(const std::string& path);
  // Writes to TEMP_XML_FILE, or to `output_path` when one is given. Returns what tolerant
  // reading assumed for the clips.
  AssumptionReport create_fcp_xml(const std::optional<std::string>& output_path = std::nullopt);

  // Sets `ntsc` and `timebase` from the frame-rate row named `type`; false (nothing changed)
  // when no row has that name.
  bool set_sequence_rate(std::string_view type);

  ControllerFields& fields() { return fields_; }
  const ControllerFields& fields() const { return fields_; }
  const Form& form() const { return form_; }

 private:
  Form form_;
  LineSink& out_;
  OutputPaths paths_;
  ControllerFields fields_;
};

// What the form's controls and the rate fields ask of a run, read at the moment of the call.
TitleSettings read_title_settings(const Form& form, const ControllerFields& fields);

}  // namespace quillory
