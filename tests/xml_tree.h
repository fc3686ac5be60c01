#pragma once
// Compares two XML documents as trees: golden files and the outputs of the two hosts are
// judged this way, since the whitespace between elements is the writer's choice.

#include <string>

namespace quillory::test {

// Compares element names, attributes (in any order) and text, ignoring the blank text between
// elements. Returns "" when the trees are equal, else the text around where they first differ.
std::string tree_difference(const std::string& expected_xml, const std::string& actual_xml);

}  // namespace quillory::test
