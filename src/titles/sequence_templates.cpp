#include "titles/sequence_templates.h"

// The texts are the files of templates/, byte for byte: ASCII, tab-indented, line-feed line
// ends, with the leading and trailing whitespace that the parser is handed too.
#include "embedded_templates.h"
#include "xml/read_xml.h"

namespace quillory {

std::string empty_sequence_xml() { return std::string(k_empty_sequence, sizeof k_empty_sequence); }

std::string lower_third_xml() { return std::string(k_lower_third, sizeof k_lower_third); }

std::string tcr_filter_xml() { return std::string(k_tcr_filter, sizeof k_tcr_filter); }

TitleTemplate built_in_template() {
  auto fragment = xml::share(xml::read_html_fragment(lower_third_xml(), "built-in title"));
  xmlNode* node = xml::as_node(fragment.get());
  return TitleTemplate{"Default", "Text", node, std::move(fragment), {}};
}

}  // namespace quillory
