#include "source/get_info_from_clips.h"

#include <gtest/gtest.h>

#include "form/memory_form.h"
#include "test_support.h"

namespace quillory {
namespace {

using test::file_definition;
using test::media_clip;
using test::xmeml;

std::string generator_clip(const std::string& name, const std::string& effect_id) {
  return "<clip><name>" + name +
         "</name><media><video><track><generatoritem id=\"g\"><name>g</name><effect><effectid>" +
         effect_id + "</effectid></effect></generatoritem></track></video></media></clip>";
}

class Opening : public ::testing::Test {
 protected:
  std::optional<std::vector<std::string>> open(const std::string& body) {
    const std::string path = dir.file("source " + std::to_string(++count) + ".xml");
    test::write_file(path, xmeml(body));
    return get_info_from_clips(path, form, fields, out);
  }

  test::TempDir dir;
  int count = 0;
  MemoryForm memory;
  Form form = memory.form();
  ControllerFields fields;
  RecordingSink out;
};

TEST_F(Opening, CollectsClipsWithTheirFileFactsAndDeduplicatesRates) {
  const auto result = open(media_clip("A", "f1", 10, "", "FALSE", 25) +
                           media_clip("B", "f1", 10, "", "TRUE", 24) +
                           media_clip("C", "f2", 10, file_definition("f2", "c.mov"), "FALSE", 25) +
                           "<bin>" + file_definition("f1", "a.mov", "R1", "01:00:00:00") + "</bin>");
  ASSERT_TRUE(result);
  EXPECT_EQ(*result, (std::vector<std::string>{"PAL (25fps)", "24P (24fps)"}));
  EXPECT_EQ(fields.frame_rates, *result);
  ASSERT_EQ(fields.clips_array.size(), 3U);
  const ClipRecord& b = fields.clips_array[1];
  EXPECT_EQ(b.clip_name, "B");
  EXPECT_EQ(b.file_name, "a.mov");  // a reference whose definition stands later
  EXPECT_EQ(b.reel, "R1");
  EXPECT_EQ(b.frame_string, "01:00:00:00");
  EXPECT_EQ(b.scene, "S-B");
  EXPECT_EQ(b.shottake, "T-B");
  EXPECT_EQ(b.lognote, "N-B");
  EXPECT_EQ(fields.clips_array[2].file_name, "c.mov");
  ASSERT_EQ(fields.templates_array.size(), 1U);
  EXPECT_EQ(fields.templates_array[0].name, "Default");
  EXPECT_EQ(fields.templates_array[0].type, "Text");
  EXPECT_EQ(out.lines[0], "opening...");
  EXPECT_EQ(out.lines[1], "no errors parsing file!");
  EXPECT_EQ(out.lines[2], "...done!");
}

TEST_F(Opening, NoDuplicateRateGivesNoResult) {
  EXPECT_FALSE(open(media_clip("A", "f", 5, file_definition("f", "a.mov"))));
  EXPECT_EQ(fields.frame_rates, std::vector<std::string>{"PAL (25fps)"});
  EXPECT_FALSE(open(""));
  EXPECT_EQ(fields.templates_array.size(), 1U);
  EXPECT_TRUE(fields.clips_array.empty());
  EXPECT_TRUE(fields.frame_rates.empty());
}

TEST_F(Opening, TextGeneratorClipsBecomeTemplatesAndOthersArePassedOver) {
  open(generator_clip("Lower", "Text") + generator_clip("Slate", "Outline Text") +
       generator_clip("Bars", "Color Bars") + generator_clip("Default", "Text") +
       "<clip><name>NoEffect</name><media><video><track><generatoritem/></track></video></media>"
       "</clip>");
  std::vector<std::pair<std::string, std::string>> templates;
  for (const auto& t : fields.templates_array) templates.emplace_back(t.name, t.type);
  EXPECT_EQ(templates, (std::vector<std::pair<std::string, std::string>>{
                           {"Default", "Text"}, {"Lower", "Text"}, {"Slate", "Outline Text"},
                           {"Default", "Text"}}));
  EXPECT_TRUE(fields.clips_array.empty());
  EXPECT_TRUE(fields.frame_rates.empty());
}

TEST_F(Opening, NonXmemlDocumentChangesNothing) {
  open(media_clip("A", "f", 5, file_definition("f", "a.mov")));
  const auto previous = fields.clips_array[0].document;
  const std::string path = dir.file("project.xml");
  test::write_file(path, "<project><clip/></project>");
  out.lines.clear();
  EXPECT_FALSE(get_info_from_clips(path, form, fields, out));
  EXPECT_EQ(out.lines, (std::vector<std::string>{"opening...", "no errors parsing file!"}));
  EXPECT_EQ(memory.xmlFileName.value, "source 1.xml");
  ASSERT_EQ(fields.clips_array.size(), 1U);
  EXPECT_EQ(fields.clips_array[0].document, previous);
}

TEST_F(Opening, AcceptedOpenReplacesTheListsAndReleasesThePreviousDocument) {
  open(media_clip("A", "f", 5, file_definition("f", "a.mov")));
  std::weak_ptr<xmlDoc> first = fields.clips_array[0].document;
  open(media_clip("B", "g", 5, file_definition("g", "b.mov")));
  EXPECT_TRUE(first.expired());
  ASSERT_EQ(fields.clips_array.size(), 1U);
  EXPECT_EQ(fields.clips_array[0].clip_name, "B");
}

TEST_F(Opening, FailingClipKeepsWhatCameBeforeAndItsOwnRecord) {
  try {
    open(media_clip("A", "f", 5, file_definition("f", "a.mov")) +
         media_clip("B", "f", 5, "", "true", 24) + media_clip("C", "f", 5));
    FAIL() << "expected an error";
  } catch (const std::runtime_error& error) {
    const std::string message = error.what();
    EXPECT_NE(message.find("clip \"B\""), std::string::npos) << message;
    EXPECT_NE(message.find("no frame rate matches ntsc \"true\" and timebase 24"),
              std::string::npos) << message;
    EXPECT_NE(message.find("TRUE/24"), std::string::npos) << message;
  }
  EXPECT_EQ(memory.xmlFileName.value, "source 1.xml");
  ASSERT_EQ(fields.clips_array.size(), 2U);
  EXPECT_EQ(fields.frame_rates, std::vector<std::string>{"PAL (25fps)"});
}

TEST_F(Opening, MissingPiecesFailNamingTheClip) {
  const auto message = [this](const std::string& body) {
    try {
      open(body);
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  EXPECT_NE(message(media_clip("A", "nowhere", 5)).find("id \"nowhere\""), std::string::npos);
  EXPECT_NE(message("<clip><duration>1</duration></clip>").find("a clip has no <name>"),
            std::string::npos);
  std::string no_scene = media_clip("S", "f", 5, file_definition("f", "s.mov"));
  no_scene.replace(no_scene.find("<scene>S-S</scene>"), 18, "");
  EXPECT_NE(message(no_scene).find("has no <logginginfo/scene>; a media clip must log"),
            std::string::npos);
  EXPECT_NE(message("<clip><name>N</name><logginginfo/></clip>")
                .find("clip \"N\" (<clip> at line 4 of " + dir.file("source 4.xml") +
                      ") has no <file>"),
            std::string::npos);
}

TEST_F(Opening, UpdatesTheFileDisplayInOrder) {
  struct IconSide : IconView {
    explicit IconSide(std::vector<std::string>& c) : calls(c) {}
    void setHidden(bool h) override { calls.push_back("icon hidden " + std::to_string(h)); }
    void setToolTip(const std::string& t) override { calls.push_back("icon tooltip " + t); }
    void setNeedsDisplay(bool) override { calls.push_back("icon redisplay"); }
    std::vector<std::string>& calls;
  };
  struct LabelSide : TextLabel {
    explicit LabelSide(std::vector<std::string>& c) : calls(c) {}
    void setStringValue(const std::string& t) override { calls.push_back("label " + t); }
    void setNeedsDisplay(bool) override { calls.push_back("label redisplay"); }
    std::vector<std::string>& calls;
  };
  std::vector<std::string> calls;
  IconSide icon(calls);
  LabelSide label(calls);
  Form recording{memory.templatePopup,  memory.nameField,      memory.line_labels[0],
                 memory.line_labels[1], memory.line_labels[2], memory.line_labels[3],
                 memory.line_labels[4], memory.line_popups[0], memory.line_popups[1],
                 memory.line_popups[2], memory.line_popups[3], memory.line_popups[4],
                 memory.tcrCheckbox,    icon,                  label};
  const std::string path = dir.file("Edit 1.xml");
  test::write_file(path, xmeml(""));
  get_info_from_clips(path, recording, fields, out);
  EXPECT_EQ(calls, (std::vector<std::string>{"icon hidden 0", "icon tooltip " + path,
                                             "label Edit 1.xml", "icon redisplay",
                                             "label redisplay"}));
}

}  // namespace
}  // namespace quillory
