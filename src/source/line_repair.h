#pragma once
// Byte-level repair of text that is not well-formed UTF-8. A line is cut into units whose
// length its first byte announces; every unit that is not one of the accepted sequences
// (printable ASCII, tab, line feed, carriage return, or a well-formed UTF-8 sequence with no
// overlong form, no surrogate and nothing above U+10FFFF) is dropped whole.

#include <string>
#include <string_view>
#include <vector>

namespace quillory {

// Length of the repair unit that starts with `first_byte` (1 to 6).
std::size_t repair_unit_length(unsigned char first_byte);

// True when `unit` is made entirely of accepted sequences.
bool is_valid_utf8_unit(std::string_view unit);

// The line with every invalid or incomplete unit removed.
std::string repair_line(std::string_view line);

// Splits bytes at every line feed (removed); a carriage return before it stays with its line.
// Empty lines at the very end of the text are not part of the list.
std::vector<std::string> split_lines(std::string_view bytes);

// The lines joined with no separator at all.
std::string join_lines(const std::vector<std::string>& lines);

}  // namespace quillory
