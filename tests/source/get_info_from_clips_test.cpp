#include "source/get_info_from_clips.h"

#include <gtest/gtest.h>

#include "source/assumption_report.h"
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

// A file cut off inside a clip parses only once repaired: strict reading refuses the clip cut
// short, naming it; tolerant reading takes it with a warning.
TEST_F(Opening, FileCutShortIsRefusedOrWarnedAbout) {
  test::write_file(dir.file("cut.xml"), "<?xml version=\"1.0\"?>\n<xmeml version=\"4\">\n<clip><name>A</name>\n"
                                        "<rate><ntsc>FALSE</ntsc><timebase>25</timebase></rate>\n");
  const OpenedSource strict = get_info_from_clips(dir.file("cut.xml"), built_in_template(), false, out);
  EXPECT_EQ(strict.status, OpenStatus::Broken);
  EXPECT_NE(strict.error.find("clip \"A\""), std::string::npos) << strict.error;
  const OpenedSource tolerant = get_info_from_clips(dir.file("cut.xml"), built_in_template(), true, out);
  EXPECT_EQ(tolerant.status, OpenStatus::Opened);
  EXPECT_EQ(report_assumptions(tolerant.templates, tolerant.clips).warnings.size(), 1U);
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
