#pragma once
// Times as FCPXML writes them: rational seconds, "1001/30000s", "3600s", "0s". They are read
// into exact times (a count on a scale of units a second) and written back in the shortest
// form Final Cut Pro writes; nothing is rounded on the way.

#include <optional>
#include <string>
#include <string_view>

#include "startup/rational_time.h"
#include "xml/xml_handles.h"

namespace quillory {

// "N/Ds" or "Ns" (N a whole number, possibly negative, of at most 2^40; D a positive one of at
// most 2^24), read exactly: N units on a scale of D units a second. None for any other text.
std::optional<RationalTime> read_fcpxml_time(std::string_view text);

// The time in the element's attribute `name` ("offset", "start", "duration"...); 0 s when the
// attribute is absent or is not a time.
RationalTime fcpxml_time_attribute(const xmlNode* element, const char* name);

// The time as FCPXML writes it, in whole seconds where it is some ("3600s", "0s"), else in
// units of its scale's second: 2 frames at 29.97 (units 30000/1001) are "2002/30000s".
std::string fcpxml_time_text(const RationalTime& time);

}  // namespace quillory
