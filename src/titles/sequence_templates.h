#pragma once
// The three fixed xmeml (version 4) texts from which every output document is built: an empty
// sequence, the built-in text-generator title, and the Timecode Reader filter. Callers parse
// them and fill in the fields that change per run or per clip.

#include <string>

#include "source/clip_record.h"
#include "xml/xml_handles.h"

namespace quillory {

// A complete xmeml document holding one empty sequence (id "Quillory") with two video and
// four audio tracks. Parsed as XML; the sequence name and rate are set afterwards.
std::string empty_sequence_xml();

// One generatoritem (id "Quillory Card") with its Text generator effect and its six motion
// filters. Parsed as an HTML fragment; the first "effect/parameter/value" takes the title text.
std::string lower_third_xml();

// One enabled Timecode Reader filter, parsed as an HTML fragment and appended unchanged to a
// clip item.
std::string tcr_filter_xml();

// The built-in template "Default" (of type "Text"): lower_third_xml parsed as an HTML fragment.
TitleTemplate built_in_template();

// empty_sequence_xml parsed, without the blank text between its elements, ready to be filled.
xml::Document readied_empty_sequence();

// The Timecode Reader filter, parsed once for a run; `append_to` adds a copy of it to a clip
// item of the output document.
class TimecodeReader {
 public:
  TimecodeReader();
  void append_to(xmlNode* item) const;

 private:
  xml::Document filter_;
};

// Each function returns a new string; changing it does not change what later calls return.
// The texts keep their leading and trailing whitespace (line feed and tab), which is part of
// what the parser receives.

}  // namespace quillory
