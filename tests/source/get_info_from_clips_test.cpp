#include "source/get_info_from_clips.h"

#include <gtest/gtest.h>

#include "test_support.h"
#include "titles/sequence_templates.h"

namespace quillory {
namespace {

using test::file_definition;
using test::media_clip;

std::string generator_clip(const std::string& name, const std::string& effect_id) {
  return "<clip><name>" + name +
         "</name><media><video><track><generatoritem id=\"g\"><name>g</name><effect><effectid>" +
         effect_id + "</effectid></effect></generatoritem></track></video></media></clip>";
}

class Opening : public ::testing::Test {
 protected:
  OpenedSource open(const std::string& body) {
    const std::string path = dir.file("source " + std::to_string(++count) + ".xml");
    test::write_file(path, test::xmeml(body));
    return get_info_from_clips(path, built_in_template(), out);
  }

  test::TempDir dir;
  int count = 0;
  RecordingSink out;
};

TEST_F(Opening, CollectsClipsWithTheirFileFactsAndRates) {
  const OpenedSource opened =
      open(media_clip("A", "f1", 10, "", "FALSE", 25) + media_clip("B", "f1", 10, "", "TRUE", 24) +
           media_clip("C", "f2", 10, file_definition("f2", "c.mov"), "FALSE", 25) + "<bin>" +
           file_definition("f1", "a.mov", "R1", "01:00:00:00") + "</bin>");
  ASSERT_EQ(opened.status, OpenStatus::Opened) << opened.error;
  EXPECT_EQ(opened.frame_rates, (std::vector<std::string>{"PAL (25fps)", "24P (24fps)"}));
  EXPECT_TRUE(opened.rates_repeated);
  EXPECT_EQ(opened.clip_rates, (std::vector<std::string>{"PAL (25fps)", "24P (24fps)", "PAL (25fps)"}));
  ASSERT_EQ(opened.clips.size(), 3U);
  const ClipRecord& b = opened.clips[1];
  EXPECT_EQ(b.clip_name, "B");
  EXPECT_EQ(b.file_name, "a.mov");  // a reference whose definition stands later
  EXPECT_EQ(b.reel, "R1");
  EXPECT_EQ(b.frame_string, "01:00:00:00");
  EXPECT_EQ(b.scene + b.shottake + b.lognote, "S-BT-BN-B");
  EXPECT_EQ(opened.clips[2].file_name, "c.mov");
  ASSERT_EQ(opened.templates.size(), 1U);
  EXPECT_EQ(opened.templates[0].name, "Default");
  EXPECT_EQ(std::vector<std::string>(out.lines.begin(), out.lines.begin() + 3),
            (std::vector<std::string>{"opening...", "no errors parsing file!", "...done!"}));
  EXPECT_FALSE(open(media_clip("A", "f", 5, file_definition("f", "a.mov"))).rates_repeated);
}

TEST_F(Opening, TextGeneratorClipsBecomeTemplatesAndOthersArePassedOver) {
  const OpenedSource opened =
      open(generator_clip("Lower", "Text") + generator_clip("Slate", "Outline Text") +
           generator_clip("Bars", "Color Bars") + generator_clip("Default", "Text") +
           "<clip><name>NoEffect</name><media><video><track><generatoritem/></track></video>"
           "</media></clip>");
  std::vector<std::pair<std::string, std::string>> templates;
  for (const auto& t : opened.templates) templates.emplace_back(t.name, t.type);
  EXPECT_EQ(templates, (std::vector<std::pair<std::string, std::string>>{
                           {"Default", "Text"}, {"Lower", "Text"}, {"Slate", "Outline Text"},
                           {"Default", "Text"}}));
  EXPECT_TRUE(opened.clips.empty());
  EXPECT_TRUE(opened.frame_rates.empty());
}

TEST_F(Opening, RecordsKeepTheirDocumentAliveAndANewOpenReleasesIt) {
  std::weak_ptr<xmlDoc> first;
  {
    const OpenedSource opened = open(media_clip("A", "f", 5, file_definition("f", "a.mov")));
    first = opened.clips[0].document;
    EXPECT_FALSE(first.expired());
  }
  EXPECT_TRUE(first.expired());
}

TEST_F(Opening, RefusalsSayWhatAndWhere) {
  test::write_file(dir.file("project.xml"), "<project><clip/></project>");
  const OpenedSource not_xmeml = get_info_from_clips(dir.file("project.xml"), built_in_template(), out);
  EXPECT_EQ(not_xmeml.status, OpenStatus::NotXmeml);
  EXPECT_TRUE(not_xmeml.templates.empty());
  const OpenedSource missing = get_info_from_clips(dir.file("missing.xml"), built_in_template(), out);
  EXPECT_EQ(missing.status, OpenStatus::Unreadable);
  EXPECT_NE(missing.error.find(dir.file("missing.xml")), std::string::npos);

  std::string no_scene = media_clip("S", "f", 5, file_definition("f", "s.mov"));
  no_scene.replace(no_scene.find("<scene>S-S</scene>"), 18, "");
  const struct {
    std::string body;
    std::string message;
  } cases[] = {
      {media_clip("A", "nowhere", 5), "id \"nowhere\""},
      {"<clip><duration>1</duration></clip>", "a clip has no <name> (<clip> at line 4 of "},
      {no_scene, "has no <logginginfo/scene>; a media clip must log"},
      {"<clip><name>N</name><logginginfo/></clip>", "clip \"N\" (<clip> at line 4 of "},
      {media_clip("A", "f", 5, file_definition("f", "a.mov")) + media_clip("B", "f", 5, "", "true", 24),
       "no frame rate matches ntsc \"true\" and timebase 24"},
  };
  for (const auto& c : cases) {
    const OpenedSource broken = open(c.body);
    EXPECT_EQ(broken.status, OpenStatus::Broken);
    EXPECT_NE(broken.error.find(c.message), std::string::npos) << broken.error;
  }
  // The clip whose rate is at fault keeps its record; only the rates before it are named.
  const OpenedSource last = open(cases[4].body);
  EXPECT_EQ(last.clips.size(), 2U);
  EXPECT_EQ(last.frame_rates, std::vector<std::string>{"PAL (25fps)"});
  EXPECT_NE(last.error.find("TRUE/24"), std::string::npos);
}

}  // namespace
}  // namespace quillory
