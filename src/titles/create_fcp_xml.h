#pragma once
// Creating titles: lays every clip end to end on a new sequence, puts a title over each one,
// and writes the document, replacing the previous output file whole.

#include <optional>
#include <string>

#include "form/controller_fields.h"
#include "form/controls.h"
#include "form/line_sink.h"
#include "source/xml_handles.h"

namespace quillory {

// Builds the title sequence from `fields` and the form's settings and writes it to
// `output_path`. Neither the fields nor the source document are changed. Throws, naming the
// clip, when a clip or the template lacks something the sequence needs, and when no output
// path or no open document is known; the previous output file then stays as it was.
void create_fcp_xml(const Form& form, const ControllerFields& fields,
                    const std::optional<std::string>& output_path, LineSink& out);

// The title sequence document that create_fcp_xml writes, without writing it.
xml::Document build_title_sequence(const Form& form, const ControllerFields& fields,
                                   LineSink& out);

}  // namespace quillory
