#include "xml/read_xml.h"

#include <libxml/parser.h>

#include <gtest/gtest.h>

#include "test_support.h"
#include "xml/diagnostic_collector.h"

namespace quillory {
namespace {

// The HTML parser adds a default document type node unless told not to; that node cannot be
// copied into another document, so a fragment must hold only what its text holds.
TEST(ReadHtmlFragment, HoldsNoDefaultDoctypeNode) {
  const xml::Document doc = xml::read_html_fragment("\n\t<filter>\n\t\t<enabled/>\n\t</filter>\n\t", "f");
  for (const xmlNode* node = doc->children; node != nullptr; node = node->next) {
    EXPECT_NE(node->type, XML_DTD_NODE);
  }
  EXPECT_EQ(xmlDocGetRootElement(doc.get())->name, std::basic_string_view<xmlChar>(BAD_CAST "filter"));
}

TEST(ReadXml, CollectsDiagnosticsWithLinesAndNeverExpandsEntities) {
  const std::string text =
      "<!DOCTYPE x [<!ENTITY e SYSTEM \"file:///etc/passwd\">]>\n<x>\n<a>&e;</a>\n</b>\n";
  const xml::ParsedXml parsed = xml::read_xml(text, "doc.xml", XML_PARSE_RECOVER);
  ASSERT_TRUE(parsed.document);
  ASSERT_FALSE(parsed.diagnostics.empty());
  EXPECT_EQ(parsed.diagnostics.front().line, 4);
  EXPECT_EQ(xml::describe(parsed.diagnostics.front(), "doc.xml").rfind("doc.xml:4: ", 0), 0U);
  EXPECT_EQ(test::texts(parsed.document, "/x").find("root:"), std::string::npos);
}

TEST(ReadXml, PutsBackTheErrorHandlerItFound) {
  static int calls = 0;
  const xmlStructuredErrorFunc mine = [](void*, xml::ErrorReport) { ++calls; };
  xmlSetStructuredErrorFunc(nullptr, mine);
  EXPECT_FALSE(xml::read_xml("<xmeml><a></b></xmeml>", "doc.xml", XML_PARSE_RECOVER).diagnostics.empty());
  EXPECT_EQ(xmlStructuredError, mine);
  EXPECT_EQ(calls, 0) << "diagnostics of the parse must not leak to the previous handler";
  xmlSetStructuredErrorFunc(nullptr, nullptr);
}

}  // namespace
}  // namespace quillory
