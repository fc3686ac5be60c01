#include "titles/sequence_templates.h"

#include <gtest/gtest.h>

#include "test_support.h"
#include "xml/read_xml.h"

namespace quillory {
namespace {

// The fragment's one element as an XML document of its own.
std::string as_xml_document(const xml::Document& fragment) {
  xml::Document doc(xmlNewDoc(BAD_CAST "1.0"));
  xmlDocSetRootElement(doc.get(), xmlDocCopyNode(xmlDocGetRootElement(fragment.get()), doc.get(), 1));
  xmlChar* text = nullptr;
  int size = 0;
  xmlDocDumpMemory(doc.get(), &text, &size);
  const xml::XmlString owned(text);
  return std::string(reinterpret_cast<char*>(text), static_cast<std::size_t>(size));
}

// Titles and filters are parsed as HTML fragments; their texts must read as the same tree as
// XML, or the written document would not be what the files say.
TEST(SequenceTemplates, FragmentsAreOneElementThatReadsAlikeAsHtmlAndAsXml) {
  const xml::Document title = xml::read_html_fragment(lower_third_xml(), "title");
  EXPECT_EQ(test::texts(title, "count(/*)"), "1|");
  EXPECT_EQ(test::texts(title, "count(/generatoritem/effect/parameter/value)"), "12|");
  EXPECT_EQ(test::texts(title, "/generatoritem/name | /generatoritem/effect/parameter[1]/value"),
            "Name||");
  const xml::Document filter = xml::read_html_fragment(tcr_filter_xml(), "filter");
  EXPECT_EQ(test::texts(filter, "count(/*)"), "1|");
  EXPECT_EQ(test::texts(filter, "/filter/effect/parameter[parameterid='mode']/value"), "TCR |");
  EXPECT_EQ(test::tree_difference(lower_third_xml(), as_xml_document(title)), "");
  EXPECT_EQ(test::tree_difference(tcr_filter_xml(), as_xml_document(filter)), "");
}

}  // namespace
}  // namespace quillory
