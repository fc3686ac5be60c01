#include "source/get_info_from_clips.h"

#include <gtest/gtest.h>

#include "test_support.h"
#include "titles/sequence_templates.h"

namespace quillory {
namespace {

using test::file_definition;
using test::media_clip;

// What a document yields when it opens shows end to end in tests/cases/list_as_json.
class Opening : public ::testing::Test {
 protected:
  OpenedSource open(const std::string& body) {
    test::write_file(dir.file("source.xml"), test::xmeml(body));
    return get_info_from_clips(dir.file("source.xml"), built_in_template(), false, out);
  }

  test::TempDir dir;
  RecordingSink out;
};

TEST_F(Opening, RecordsKeepTheirDocumentAliveAndANewOpenReleasesIt) {
  std::weak_ptr<xmlDoc> first;
  {
    const OpenedSource opened = open(media_clip("A", "f", 5, file_definition("f", "a.mov")));
    first = opened.clips[0].document;
    EXPECT_FALSE(first.expired());
    EXPECT_FALSE(opened.rates_repeated);
  }
  EXPECT_TRUE(first.expired());
}

TEST_F(Opening, BrokenDocumentsSayWhatAndWhere) {
  std::string no_scene = media_clip("S", "f", 5, file_definition("f", "s.mov"));
  no_scene.replace(no_scene.find("<scene>S-S</scene>"), 18, "");
  const std::pair<std::string, std::string> cases[] = {
      {media_clip("A", "nowhere", 5), "id \"nowhere\""},
      {"<clip><duration>1</duration></clip>", "a clip has no <name> (<clip> at line 4 of "},
      {no_scene, "has no <logginginfo/scene>; a media clip must log"},
      {"<clip><name>N</name><logginginfo/></clip>", "clip \"N\" (<clip> at line 4 of "},
      {media_clip("A", "f", 5, file_definition("f", "a.mov")) + media_clip("B", "f", 5, "", "true", 24),
       "no frame rate matches ntsc \"true\" and timebase 24"},
  };
  for (const auto& [body, message] : cases) {
    const OpenedSource broken = open(body);
    EXPECT_EQ(broken.status, OpenStatus::Broken);
    EXPECT_NE(broken.error.find(message), std::string::npos) << broken.error;
  }
  // The clip whose rate is at fault keeps its record; only the rates before it are named.
  const OpenedSource last = open(cases[4].first);
  EXPECT_EQ(last.clips.size(), 2U);
  EXPECT_EQ(last.frame_rates, std::vector<std::string>{"PAL (25fps)"});
  EXPECT_NE(last.error.find("TRUE/24"), std::string::npos);
}

TEST_F(Opening, ACommentBeforeARootThatIsNotXmemlIsRefusedInBothModes) {
  test::write_file(dir.file("project.xml"), "<!-- exported -->\n<project/>\n");
  for (const bool tolerant : {false, true}) {
    const OpenedSource opened = get_info_from_clips(dir.file("project.xml"), built_in_template(), tolerant, out);
    EXPECT_EQ(opened.status, OpenStatus::NotXmeml);
    EXPECT_FALSE(opened.incomplete);
  }
}

}  // namespace
}  // namespace quillory
