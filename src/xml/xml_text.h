#pragma once
// Whether a text may stand in an XML 1.0 document: libxml2 writes any bytes it is given, so
// text that comes from outside a parsed document (options, fields of the window) is checked
// before it is written, or the written document is one that no XML reader accepts.

#include <optional>
#include <string>
#include <string_view>

namespace quillory::xml {

// Nothing when `text` is UTF-8 and holds only characters that XML 1.0 allows; otherwise why
// not, as a phrase that follows the text's name: "is not UTF-8 (byte 0xE9 at position 4)",
// "holds the control character U+0001 at position 2". Positions count characters from 1.
std::optional<std::string> why_not_xml_text(std::string_view text);

}  // namespace quillory::xml
