#include "titles/sequence_templates.h"

// The texts are the files of templates/, byte for byte: ASCII, tab-indented, line-feed line
// ends, with the leading and trailing whitespace that the parser is handed too.
#include "embedded_templates.h"
#include "source/user_message.h"
#include "titles/node_copies.h"
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

xml::Document readied_empty_sequence() {
  xml::ParsedXml parsed = xml::read_xml(empty_sequence_xml(), "empty sequence", 0);
  if (!parsed.document || !parsed.diagnostics.empty()) {
    fail("the built-in empty sequence does not parse");
  }
  remove_formatting_blanks(xmlDocGetRootElement(parsed.document.get()));
  return std::move(parsed.document);
}

TimecodeReader::TimecodeReader()
    : filter_(xml::read_html_fragment(tcr_filter_xml(), "Timecode Reader")) {
  remove_formatting_blanks(xml::as_node(filter_.get()));
}

void TimecodeReader::append_to(xmlNode* item) const {
  for (const xmlNode* node = filter_->children; node != nullptr; node = node->next) {
    xmlAddChild(item, clean_copy(node, item->doc).release());
  }
}

}  // namespace quillory
