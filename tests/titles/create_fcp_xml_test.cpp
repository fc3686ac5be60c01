// How clips, titles and filters are laid out is checked end to end (tests/cases); here, what
// only a caller of the core can see.

#include "titles/create_fcp_xml.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "source/get_info_from_clips.h"
#include "test_support.h"
#include "titles/sequence_templates.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

class CreatingTitles : public ::testing::Test {
 protected:
  void open(const std::string& body) {
    test::write_file(dir.file("dailies.xml"), test::xmeml(body));
    opened = get_info_from_clips(dir.file("dailies.xml"), built_in_template(), false, out);
  }
  void create() { create_fcp_xml(opened.templates, opened.clips, settings, output, out); }

  test::TempDir dir;
  OpenedSource opened;
  TitleSettings settings;
  RecordingSink out;
  std::optional<std::string> output = dir.file("Quillory.xml");
};

TEST_F(CreatingTitles, RunsChangeNeitherTheSourceNorEachOthersFiles) {
  open(test::media_clip("A", "f", 10, test::file_definition("f", "a.mov"), "FALSE", 25,
                        "<track><clipitem><start>-1</start><end>-1</end></clipitem></track>"));
  settings.timecode_reader = true;
  create();
  const std::string first = test::read_file(*output);
  create();
  EXPECT_EQ(test::read_file(*output), first);
  const xml::Document written = test::parse(first);
  EXPECT_EQ(test::texts(written, "//clipitem/start"), "0|0|");
  EXPECT_EQ(test::texts(written, "count(//effect[name='Timecode Reader'] | //link/trackindex)"), "1|");
  // The placed copies were timed and stripped, not the source's clip.
  xmlNode* clip = opened.clips[0].xml;
  EXPECT_EQ(xml::text_content(xml::first_descendant(clip, "start")) + "/" +
                xml::text_content(xml::first_descendant(clip, "trackindex", "link")),
            "-1/1");
}

TEST_F(CreatingTitles, NothingIsWrittenWithoutAPlaceOrADocument) {
  open("");
  output.reset();
  try {
    create();
    ADD_FAILURE() << "written without an output folder";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find("no output folder is known"), std::string::npos);
  }
  EXPECT_THROW(create_fcp_xml({}, {}, settings, dir.file("x.xml"), out), std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(dir.file("x.xml")));
}

}  // namespace
}  // namespace quillory
