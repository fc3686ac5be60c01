#include "source/parse_xml_file.h"

#include <gtest/gtest.h>

#include <system_error>

#include "test_support.h"

namespace quillory {
namespace {

class Loading : public ::testing::Test {
 protected:
  LoadedDocument load(const std::string& bytes) {
    const std::string path = dir.file("source.xml");
    test::write_file(path, bytes);
    out.lines.clear();
    LoadedDocument loaded = parse_xml_file(path, out);
    EXPECT_EQ(test::read_file(path), bytes) << "the file on disk must never change";
    return loaded;
  }
  test::TempDir dir;
  RecordingSink out;
};

TEST_F(Loading, RootNameIsTheFirstTopLevelNodeAndBlankTextIsLeftOut) {
  const LoadedDocument loaded = load("<?xml version=\"1.0\"?>\n<xmeml version=\"4\">\n\t<clip>\n"
                                     "\t\t<name>A</name>\n\t</clip>\n</xmeml>\n");
  EXPECT_EQ(out.lines, std::vector<std::string>{"no errors parsing file!"});
  EXPECT_EQ(loaded.root_name, "xmeml");
  EXPECT_EQ(xmlDocGetRootElement(loaded.document.get())->children->type, XML_ELEMENT_NODE);
  EXPECT_EQ(load("<!DOCTYPE xmeml>\n<xmeml/>\n").root_name, "xmeml");
  EXPECT_EQ(load("<!-- exported -->\n<xmeml/>\n").root_name, "comment");
  EXPECT_EQ(load("<project/>\n").root_name, "project");
  EXPECT_FALSE(loaded.before_root);
  // What a writer puts before the root element is found, with the root element after it.
  const auto before = load("<?xml version=\"1.0\"?>\n\n<?tool x?>\n<!-- c -->\n<project/>\n").before_root;
  ASSERT_TRUE(before);
  EXPECT_EQ(before->kind + " " + std::to_string(before->line) + " " + before->root_element,
            "processing instruction 3 project");
}

TEST_F(Loading, RepairKeepsCarriageReturnsAndJoinsLinesWithoutSeparator) {
  // Line feeds are gone from the repaired text, so a value spanning two lines reads "ab"...
  EXPECT_EQ(test::texts(load("<xmeml>\n<v>a\nb</v>\n<w>\xC3</w>\n</xmeml>\n").document, "//v"), "ab|");
  // ...while the carriage returns stay, and the XML parser reads one as a line end.
  EXPECT_EQ(test::texts(load("<xmeml>\r\n<v>a\r\nb</v>\r\n<w>\xC3</w>\r\n</xmeml>\r\n").document, "//v"),
            "a\nb|");
}

TEST_F(Loading, UnreadableOrEmptySourceFailsNamingThePath) {
  try {
    parse_xml_file(dir.file("missing.xml"), out);
    ADD_FAILURE() << "expected an error";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), ENOENT);
    EXPECT_NE(std::string(error.what()).find(dir.file("missing.xml")), std::string::npos);
  }
  EXPECT_TRUE(out.lines.empty());
  test::write_file(dir.file("empty.xml"), "");
  EXPECT_THROW(parse_xml_file(dir.file("empty.xml"), out), std::runtime_error);
}

}  // namespace
}  // namespace quillory
