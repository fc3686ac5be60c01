#include "titles/sequence_templates.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "xml/read_xml.h"
#include "xml/xml_nodes.h"
#include "xml/xpath_query.h"

namespace quillory {
namespace {

std::vector<xmlNode*> elements(xmlNode* first) {
  std::vector<xmlNode*> found;
  for (xmlNode* node = first; node != nullptr; node = node->next) {
    if (node->type == XML_ELEMENT_NODE) found.push_back(node);
  }
  return found;
}

// One line per element: indentation, name, attributes, and the text of text-only elements.
// Whitespace-only text between elements is left out.
void describe_tree(xmlNode* node, const std::string& indent, std::string& out) {
  out += indent + reinterpret_cast<const char*>(node->name);
  for (xmlAttr* attr = node->properties; attr != nullptr; attr = attr->next) {
    const char* name = reinterpret_cast<const char*>(attr->name);
    out += std::string(" ") + name + "=\"" + xml::attribute(node, name).value_or("?") + "\"";
  }
  auto children = elements(node->children);
  if (children.empty()) out += " text=\"" + xml::text_content(node) + "\"";
  out += "\n";
  for (xmlNode* child : children) describe_tree(child, indent + "  ", out);
}

std::string describe_top_level(xmlNode* first) {
  std::string out;
  for (xmlNode* node : elements(first)) describe_tree(node, "", out);
  return out;
}

xml::Document strict_xml(const std::string& text) {
  auto parsed = xml::read_xml(text, "template", 0);
  EXPECT_TRUE(parsed.diagnostics.empty()) << xml::describe(parsed.diagnostics.front(), "template");
  EXPECT_NE(parsed.document, nullptr);
  return std::move(parsed.document);
}

TEST(SequenceTemplates, EmptySequenceIsAnXmemlDocumentWithSixTracks) {
  auto doc = strict_xml(empty_sequence_xml());
  ASSERT_NE(doc, nullptr);
  xmlNode* root = xmlDocGetRootElement(doc.get());
  EXPECT_STREQ(reinterpret_cast<const char*>(root->name), "xmeml");
  EXPECT_EQ(xml::attribute(root, "version"), "4");

  auto sequences = xml::XPathQuery("//sequence").all(xml::as_node(doc.get()));
  ASSERT_EQ(sequences.size(), 1u);
  EXPECT_EQ(xml::attribute(sequences[0], "id"), "Quillory");
  EXPECT_EQ(xml::XPathQuery("media/video/track").all(sequences[0]).size(), 2u);
  std::string channels;
  for (xmlNode* track : xml::XPathQuery("media/audio/track").all(sequences[0])) {
    channels += xml::text_content(xml::first_child_element(track, "outputchannelindex"));
  }
  EXPECT_EQ(channels, "1212");
}

TEST(SequenceTemplates, FragmentsParseAsTheirOneElement) {
  auto title = xml::read_html_fragment(lower_third_xml(), "title");
  auto title_top = elements(title->children);
  ASSERT_EQ(title_top.size(), 1u);
  EXPECT_STREQ(reinterpret_cast<const char*>(title_top[0]->name), "generatoritem");
  auto values = xml::XPathQuery("effect/parameter/value").all(title_top[0]);
  ASSERT_EQ(values.size(), 12u);
  EXPECT_EQ(xml::text_content(values[0]), "");
  EXPECT_EQ(xml::text_content(xml::XPathQuery("name").first(title_top[0])), "Name");

  auto tcr = xml::read_html_fragment(tcr_filter_xml(), "tcr");
  auto tcr_top = elements(tcr->children);
  ASSERT_EQ(tcr_top.size(), 1u);
  EXPECT_STREQ(reinterpret_cast<const char*>(tcr_top[0]->name), "filter");
  xmlNode* mode = xml::XPathQuery("effect/parameter[parameterid='mode']/value").first(tcr_top[0]);
  EXPECT_EQ(xml::text_content(mode), "TCR ");
}

TEST(SequenceTemplates, FragmentsGiveTheSameTreeAsHtmlAndAsXml) {
  for (const std::string& text : {lower_third_xml(), tcr_filter_xml()}) {
    auto as_html = xml::read_html_fragment(text, "fragment");
    auto as_xml = strict_xml(text);
    ASSERT_NE(as_xml, nullptr);
    EXPECT_EQ(describe_top_level(as_html->children), describe_top_level(as_xml->children));
  }
}

}  // namespace
}  // namespace quillory
