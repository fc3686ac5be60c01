#include "source/parse_xml_file.h"

#include <gtest/gtest.h>

#include <system_error>

#include "xml/xml_nodes.h"
#include "xml/xpath_query.h"
#include "test_support.h"

namespace quillory {
namespace {

using test::TempDir;
using test::write_file;

struct Loaded {
  LoadedDocument loaded;
  std::vector<std::string> lines;
};

Loaded load(const TempDir& dir, const std::string& bytes) {
  const std::string path = dir.file("source.xml");
  write_file(path, bytes);
  RecordingSink out;
  LoadedDocument loaded = parse_xml_file(path, out);
  EXPECT_EQ(test::read_file(path), bytes) << "the file on disk must never change";
  return {std::move(loaded), out.lines};
}

TEST(ParseXmlFile, WellFormedFileParsesOnceWithoutBlankTextNodes) {
  TempDir dir;
  auto result = load(dir, "<?xml version=\"1.0\"?>\n<xmeml version=\"4\">\n\t<clip>\n\t\t<name>"
                          "A</name>\n\t</clip>\n</xmeml>\n");
  EXPECT_EQ(result.lines, std::vector<std::string>{"no errors parsing file!"});
  EXPECT_EQ(result.loaded.root_name, "xmeml");
  const xmlNode* root = xmlDocGetRootElement(result.loaded.document.get());
  ASSERT_NE(root->children, nullptr);
  EXPECT_EQ(root->children->type, XML_ELEMENT_NODE);
}

TEST(ParseXmlFile, RootNameIsTheFirstTopLevelNode) {
  TempDir dir;
  EXPECT_EQ(load(dir, "<!DOCTYPE xmeml>\n<xmeml/>\n").loaded.root_name, "xmeml");
  EXPECT_EQ(load(dir, "<!-- exported -->\n<xmeml/>\n").loaded.root_name, "comment");
  EXPECT_EQ(load(dir, "<project/>\n").loaded.root_name, "project");
}

TEST(ParseXmlFile, RepairKeepsCarriageReturnsAndJoinsLinesWithoutSeparator) {
  TempDir dir;
  xml::XPathQuery v("//v");
  // Line feeds are gone from the repaired text, so a value spanning two lines reads "ab"...
  auto plain = load(dir, "<xmeml>\n<v>a\nb</v>\n<w>\xC3</w>\n</xmeml>\n");
  EXPECT_EQ(xml::text_content(v.first(xml::as_node(plain.loaded.document.get()))), "ab");
  // ...while the carriage returns stay, and the XML parser reads one as a line end.
  auto crlf = load(dir, "<xmeml>\r\n<v>a\r\nb</v>\r\n<w>\xC3</w>\r\n</xmeml>\r\n");
  EXPECT_EQ(xml::text_content(v.first(xml::as_node(crlf.loaded.document.get()))), "a\nb");
}

TEST(ParseXmlFile, StructuralFaultGoesThroughAllThreeParses) {
  TempDir dir;
  auto result = load(dir, "<xmeml>\n<a>text</b>\n</xmeml>\n");
  EXPECT_EQ(result.lines, (std::vector<std::string>{"1 errors parsing file!!!", "...fixing line 2",
                                                    "1 errors parsing good_string!!!"}));
  EXPECT_EQ(result.loaded.root_name, "xmeml");
}

TEST(ParseXmlFile, DiagnosticPastTheLastLineIsAnnouncedAndRepairsNothing) {
  TempDir dir;
  auto result = load(dir, "<xmeml>\n<a>\n\n\n");  // truncated: errors reported at the end
  ASSERT_FALSE(result.lines.empty());
  EXPECT_NE(result.lines[0].find(" errors parsing file!!!"), std::string::npos);
}

TEST(ParseXmlFile, UnreadableOrEmptySourceFailsNamingThePath) {
  TempDir dir;
  RecordingSink out;
  const std::string missing = dir.file("missing.xml");
  try {
    parse_xml_file(missing, out);
    FAIL() << "expected an error";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), ENOENT);
    EXPECT_NE(std::string(error.what()).find(missing), std::string::npos);
  }
  EXPECT_TRUE(out.lines.empty());
  write_file(dir.file("empty.xml"), "");
  EXPECT_THROW(parse_xml_file(dir.file("empty.xml"), out), std::runtime_error);
}

}  // namespace
}  // namespace quillory
