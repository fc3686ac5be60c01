#include "form/controller.h"

#include <gtest/gtest.h>

#include "test_support.h"
#include "xml/failure.h"

namespace quillory {
namespace {

using test::file_definition;
using test::media_clip;

// Controls that hold their values, as a window's would.
struct Field : TextField {
  std::string stringValue() const override { return value; }
  std::string value;
};
struct Menu : PopUpMenu {
  std::optional<std::string> titleOfSelectedItem() const override { return selected; }
  std::optional<std::string> selected;
};
struct Box : Checkbox {
  int state() const override { return value; }
  int value = 0;
};
struct Display : IconView, TextLabel {
  void setHidden(bool value) override { hidden = value; }
  void setToolTip(const std::string& text) override { tool_tip = text; }
  void setStringValue(const std::string& text) override { shown = text; }
  void setNeedsDisplay(bool) override {}
  bool hidden = true;
  std::string tool_tip, shown;
};

class ControllerTest : public ::testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& body) {
    test::write_file(dir.file(name), test::xmeml(body));
    return dir.file(name);
  }

  test::TempDir dir;
  Menu templates, choices[5];
  Field name, labels[5];
  Box tcr, tolerant, import_safe;
  Display display;
  RecordingSink out;
  std::string output = dir.file("Quillory.xml");
  Controller controller{Form{templates, name, labels[0], labels[1], labels[2], labels[3],
                             labels[4], choices[0], choices[1], choices[2], choices[3],
                             choices[4], tcr, tolerant, import_safe, display, display},
                        out, OutputPaths{dir.path().string(), output}};
};

TEST_F(ControllerTest, OpenShowsTheDocumentAndReplacesTheFields) {
  const std::string path =
      write("Edit 1.xml", media_clip("A", "f", 5, file_definition("f", "a.mov")) + media_clip("B", "f", 5));
  EXPECT_EQ(controller.get_info_from_clips(path), std::vector<std::string>{"PAL (25fps)"});
  EXPECT_FALSE(display.hidden);
  EXPECT_EQ(display.tool_tip, path);
  EXPECT_EQ(display.shown, "Edit 1.xml");
  EXPECT_EQ(controller.fields().templates_array.at(0).name, "Default");
  EXPECT_EQ(controller.fields().clips_array.size(), 2U);

  // A document that is not xmeml, or cannot be read, changes nothing; one that breaks off
  // shows itself and keeps what came before the failing clip.
  test::write_file(dir.file("project.xml"), "<project><clip/></project>");
  EXPECT_FALSE(controller.get_info_from_clips(dir.file("project.xml")));
  EXPECT_THROW(controller.get_info_from_clips(dir.file("missing.xml")), std::runtime_error);
  EXPECT_EQ(display.shown, "Edit 1.xml");
  EXPECT_EQ(controller.fields().clips_array.size(), 2U);
  const std::string broken = write("broken.xml", media_clip("C", "f", 5, file_definition("f", "c.mov")) +
                                                     media_clip("D", "f", 5, "", "true", 24));
  EXPECT_THROW(controller.get_info_from_clips(broken), IncompleteInput);
  EXPECT_EQ(display.shown, "broken.xml");
  EXPECT_EQ(controller.fields().clips_array.at(0).clip_name, "C");
  // Accepting incomplete exports, the same document opens whole, the unknown rate left out.
  tolerant.value = 1;
  EXPECT_FALSE(controller.get_info_from_clips(broken));
  EXPECT_EQ(controller.fields().clips_array.size(), 2U);
  EXPECT_TRUE(read_title_settings(controller.form(), controller.fields()).tolerant);
}

TEST_F(ControllerTest, CreateReadsTheControlsAtEachRun) {
  controller.get_info_from_clips(write("d.xml", media_clip("A", "f", 10, file_definition("f", "a.mov"))));
  ASSERT_TRUE(controller.set_sequence_rate("PAL (25fps)"));
  name.value = "Day 1";
  labels[2].value = "hi";
  choices[2].selected = "Text";
  tcr.value = -1;  // mixed: no Timecode Reader
  TitleSettings settings = read_title_settings(controller.form(), controller.fields());
  EXPECT_FALSE(settings.template_name);
  EXPECT_EQ(settings.sequence_name + settings.ntsc + std::to_string(settings.timebase), "Day 1FALSE25");
  EXPECT_EQ(settings.lines[2].label + *settings.lines[2].choice, "hiText");
  EXPECT_FALSE(settings.lines[0].choice || settings.timecode_reader);
  templates.selected = "Slate";
  tcr.value = 1;
  settings = read_title_settings(controller.form(), controller.fields());
  EXPECT_TRUE(settings.template_name == "Slate" && settings.timecode_reader);
  controller.create_fcp_xml();
  EXPECT_EQ(test::texts(test::parse(test::read_file(output)),
                        "//sequence/name | //generatoritem/effect/parameter[1]/value"),
            "Day 1|hi\r|");
}

}  // namespace
}  // namespace quillory
