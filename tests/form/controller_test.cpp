#include "form/controller.h"

#include <gtest/gtest.h>

#include "test_support.h"

namespace quillory {
namespace {

using test::file_definition;
using test::media_clip;

class ControllerTest : public ::testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& body) {
    test::write_file(dir.file(name), test::xmeml(body));
    return dir.file(name);
  }

  test::TempDir dir;
  Form form;
  RecordingSink out;
  std::string output = dir.file("Quillory.xml");
  Controller controller{OutputPaths{dir.path().string(), output, {}}};
};

// What may be created from which open: only a document read whole gives titles; one that
// cannot be read or is not xmeml leaves the previous document in place.
TEST_F(ControllerTest, TitlesComeOnlyFromADocumentReadWhole) {
  EXPECT_THROW(controller.create_fcp_xml(form, out), std::runtime_error);
  const std::string path = write("Edit 1.xml", media_clip("A", "f", 5, file_definition("f", "a.mov")) +
                                                   media_clip("B", "f", 5));
  EXPECT_EQ(controller.get_info_from_clips(path, form, out).status, OpenStatus::Opened);
  EXPECT_EQ(controller.document_path(), path);
  EXPECT_FALSE(controller.display().xmlIconHidden);
  EXPECT_EQ(controller.display().xmlIconToolTip, path);
  EXPECT_EQ(controller.display().xmlFileName, "Edit 1.xml");
  EXPECT_EQ(controller.document_sequence_name(), "Edit 1");

  test::write_file(dir.file("project.xml"), "<project><clip/></project>");
  EXPECT_EQ(controller.get_info_from_clips(dir.file("project.xml"), form, out).status,
            OpenStatus::NotXmeml);
  EXPECT_NE(controller.get_info_from_clips(dir.file("missing.xml"), form, out).error.find("missing.xml"),
            std::string::npos);
  EXPECT_EQ(controller.document_path(), path);
  EXPECT_TRUE(controller.can_create());
  EXPECT_EQ(controller.source().clips.size(), 2U);

  const std::string broken = write("broken.xml", media_clip("C", "f", 5, file_definition("f", "c.mov")) +
                                                     media_clip("D", "f", 5, "", "true", 24));
  EXPECT_TRUE(controller.get_info_from_clips(broken, form, out).incomplete);
  EXPECT_EQ(controller.display().xmlFileName, "broken.xml");
  EXPECT_EQ(controller.source().clips.at(0).clip_name, "C");
  EXPECT_FALSE(controller.can_create());
  EXPECT_THROW(controller.create_fcp_xml(form, out), std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(output));
  // Accepting incomplete exports, the same document opens whole, the unknown rate left out.
  form.tolerantCheckbox = kCheckboxOn;
  EXPECT_EQ(controller.get_info_from_clips(broken, form, out).status, OpenStatus::Opened);
  EXPECT_EQ(controller.source().clips.size(), 2U);
}

// A copy of the titles goes neither over the open document nor over the file it is made from,
// and is proposed under a name no file has yet.
TEST_F(ControllerTest, CopiesGoNeitherOverTheSourceNorTheOutput) {
  const std::string path = write("dailies.xml", media_clip("A", "f", 5, file_definition("f", "a.mov")));
  controller.get_info_from_clips(path, form, out);
  form.nameField = "dailies";
  EXPECT_EQ(controller.copy_path(dir.path().string(), form), dir.file("dailies titles.xml"));
  test::write_file(dir.file("dailies titles.xml"), "");
  EXPECT_EQ(controller.copy_path(dir.path().string(), form), dir.file("dailies titles 2.xml"));
  EXPECT_THROW(controller.refuse_copy_target(dir.path().string() + "/./dailies.xml"), std::runtime_error);
  controller.create_fcp_xml(form, out);
  EXPECT_THROW(controller.refuse_copy_target(output), std::runtime_error);
  EXPECT_NO_THROW(controller.refuse_copy_target(dir.file("dailies titles.xml")));
}

TEST_F(ControllerTest, SettingsFollowTheFormAtEachRun) {
  controller.get_info_from_clips(write("d.xml", media_clip("A", "f", 10, file_definition("f", "a.mov"))),
                                 form, out);
  form.nameField = "Day 1";
  form.lines = {};
  form.lines[2] = {"hi", "Text"};
  form.lines[3] = {"x", "clip name"};  // a title no menu item has: the line shows nothing
  form.tcrCheckbox = -1;  // mixed: no Timecode Reader
  TitleSettings settings = controller.title_settings(form);
  // No rate chosen: the document's first; a rate no row has is the same as none.
  EXPECT_EQ(settings.rate, FrameRate(25, false));
  form.ratePopup = "HD (59.94fps)";
  settings = controller.title_settings(form);
  EXPECT_EQ(settings.rate, FrameRate(60, true));
  form.ratePopup = "HD (59.94 fps)";
  EXPECT_EQ(controller.title_settings(form).rate.timebase(), 25);
  EXPECT_EQ(settings.template_name, "Default");
  EXPECT_FALSE(settings.timecode_reader || settings.import_safe);
  form.templatePopup = "Slate";
  form.tcrCheckbox = kCheckboxOn;
  settings = controller.title_settings(form);
  EXPECT_TRUE(settings.template_name == "Default" && settings.timecode_reader);
  controller.create_fcp_xml(form, out);
  EXPECT_EQ(test::texts(test::parse(test::read_file(output)),
                        "//sequence/name | //generatoritem/effect/parameter[1]/value"),
            "Day 1|hi\r|");
}

}  // namespace
}  // namespace quillory
