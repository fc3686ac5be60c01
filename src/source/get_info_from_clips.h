#pragma once
// Opening a source document: loads it, shows it on the form, and rebuilds the template list,
// the clip list and the rate names that creating titles works from.

#include <optional>
#include <string>
#include <vector>

#include "form/controller_fields.h"
#include "form/controls.h"
#include "form/line_sink.h"

namespace quillory {

// Returns none when the document's root is not "xmeml" (nothing is changed then), or when no
// rate name was met twice; otherwise the de-duplicated `frame_rates`. Throws, naming the clip
// or element and its line, when the document lacks something a clip needs; what was collected
// before the failing clip stays in `fields`.
std::optional<std::vector<std::string>> get_info_from_clips(const std::string& path, Form& form,
                                                            ControllerFields& fields,
                                                            LineSink& out);

// The last component of a path, extension included.
std::string base_name(const std::string& path);

// The name a new sequence starts from: the file name without its last extension (a name that
// is all extension is kept whole).
std::string sequence_name_for(const std::string& path);

}  // namespace quillory
