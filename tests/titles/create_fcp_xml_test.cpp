#include "titles/create_fcp_xml.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "source/get_info_from_clips.h"
#include "titles/sequence_templates.h"
#include "xml/xml_nodes.h"
#include "xml/xpath_query.h"
#include "test_support.h"

namespace quillory {
namespace {

using test::file_definition;
using test::media_clip;

std::string audio_track(int items) {
  std::string track = "<track>";
  for (int i = 0; i < items; ++i) {
    track += "<clipitem id=\"a" + std::to_string(i) + "\"><start>-1</start><end>-1</end>"
             "<link><linkclipref>x</linkclipref><trackindex>1</trackindex></link></clipitem>";
  }
  return track + "</track>";
}

class CreatingTitles : public ::testing::Test {
 protected:
  void open(const std::string& body) {
    const std::string path = dir.file("dailies.xml");
    test::write_file(path, test::xmeml(body));
    opened = get_info_from_clips(path, built_in_template(), out);
  }
  void create() { create_fcp_xml(opened.templates, opened.clips, settings, output, out); }
  xml::Document created() {
    create();
    return test::parse(test::read_file(*output));
  }
  std::vector<std::string> texts(const xml::Document& doc, const char* path) {
    std::vector<std::string> result;
    for (xmlNode* node : xml::XPathQuery(path).all(xml::as_node(doc.get()))) {
      result.push_back(xml::text_content(node));
    }
    return result;
  }

  test::TempDir dir;
  OpenedSource opened;
  TitleSettings settings;
  RecordingSink out;
  std::optional<std::string> output = dir.file("Quillory.xml");
};

TEST_F(CreatingTitles, LaysClipsEndToEndWithTitlesAndAudio) {
  open(media_clip("A", "f", 100, file_definition("f", "a.mov", "R1"), "FALSE", 25,
                  audio_track(2)) +
       media_clip("B", "f", 50, "", "FALSE", 25, audio_track(1) + audio_track(1)));
  settings.sequence_name = "Dailies & more";
  settings.lines = {{{"", "Clip Name"}, {"Reel", "Reel Name"}}};
  settings.set_rate(*find_frame_rate_by_type("PAL (25fps)"));
  out.lines.clear();
  const xml::Document doc = created();
  EXPECT_EQ(out.lines, (std::vector<std::string>{"Clip 1 at 0", "  A, a.mov, 100", "Clip 2 at 100",
                                                 "  B, a.mov, 50"}));
  EXPECT_EQ(texts(doc, "//sequence/name"), std::vector<std::string>{"Dailies & more"});
  EXPECT_EQ(texts(doc, "//sequence/rate/timebase"), std::vector<std::string>{"25"});
  EXPECT_EQ(texts(doc, "//sequence/media/video/track[1]/clipitem/start"),
            (std::vector<std::string>{"0", "100"}));
  EXPECT_EQ(texts(doc, "//sequence/media/video/track[1]/clipitem/end"),
            (std::vector<std::string>{"100", "150"}));
  EXPECT_EQ(texts(doc, "//sequence/media/audio/track[1]/clipitem/start"),
            (std::vector<std::string>{"0", "100"}));
  EXPECT_EQ(texts(doc, "//sequence/media/audio/track[2]/clipitem/end"),
            (std::vector<std::string>{"100", "150"}));
  EXPECT_TRUE(texts(doc, "//sequence/media/audio/track[3]/clipitem").empty());
  EXPECT_EQ(texts(doc, "//generatoritem/name"),
            (std::vector<std::string>{"Quillory Card", "Quillory Card"}));
  EXPECT_EQ(texts(doc, "//generatoritem/duration"), (std::vector<std::string>{"100", "50"}));
  EXPECT_EQ(texts(doc, "//generatoritem/out"), (std::vector<std::string>{"100", "50"}));
  EXPECT_EQ(texts(doc, "//generatoritem/start"), (std::vector<std::string>{"0", "100"}));
  EXPECT_EQ(texts(doc, "//generatoritem/in"), (std::vector<std::string>{"0", "0"}));
  EXPECT_EQ(texts(doc, "//generatoritem/effect/parameter[1]/value"),
            (std::vector<std::string>{"A\rReel R1\r", "B\rReel R1\r"}));
  EXPECT_TRUE(texts(doc, "//link/mediatype | //link/trackindex | //link/clipindex | "
                         "//link/groupindex").empty());
  EXPECT_EQ(texts(doc, "//link/linkclipref").size(), 6U);
  EXPECT_TRUE(texts(doc, "//filter/effect[effectid='Timecode Reader']").empty());
}

TEST_F(CreatingTitles, TimecodeReaderOnlyWhenAskedAndOutlineTextInSecondValue) {
  const std::string outline =
      "<clip><name>Slate</name><media><video><track><generatoritem id=\"s\"><name>S</name>"
      "<duration>1</duration><in>0</in><out>1</out><start>0</start><end>1</end><effect>"
      "<effectid>Outline Text</effectid><parameter><value>first</value></parameter><parameter>"
      "<value>second</value></parameter></effect></generatoritem></track></video></media></clip>";
  open(media_clip("A", "f", 10, file_definition("f", "a.mov")) + outline);
  settings.template_name = "Slate";
  settings.lines = {{{"hi", "Text"}}};
  xml::Document doc = created();
  EXPECT_EQ(texts(doc, "//generatoritem/effect/parameter/value"),
            (std::vector<std::string>{"first", "hi\r"}));
  EXPECT_TRUE(texts(doc, "//effectid[.='Timecode Reader']").empty());
  settings.timecode_reader = true;
  doc = created();
  EXPECT_EQ(texts(doc, "//video/track[1]/clipitem/filter[last()]/effect/effectid"),
            std::vector<std::string>{"Timecode Reader"});
  EXPECT_EQ(texts(doc, "//effectid[.='Timecode Reader']").size(), 1U);
  settings.template_name = "No such template";
  doc = created();
  EXPECT_EQ(texts(doc, "//generatoritem/@id"), std::vector<std::string>{"Quillory Card"});
}

TEST_F(CreatingTitles, RunsLeaveTheListsUnchangedAndGiveIdenticalFiles) {
  open(media_clip("A", "f", 10, file_definition("f", "a.mov"), "FALSE", 25, audio_track(4)));
  settings.timecode_reader = true;
  create();
  const std::string first = test::read_file(*output);
  create();
  EXPECT_EQ(test::read_file(*output), first);
  EXPECT_EQ(xml::text_content(xml::XPathQuery(".//start").first(opened.clips[0].xml)), "-1");
}

// The writer drops the blank text between elements to indent the document; a title whose
// lines are all empty is blank text too, but it is content and must keep its line ends.
TEST_F(CreatingTitles, TitleOfEmptyLinesKeepsItsCarriageReturns) {
  open(media_clip("A", "f", 10, file_definition("f", "a.mov")));
  settings.lines = {{{"", " "}, {"", " "}}};
  const xml::Document doc = created();
  EXPECT_EQ(texts(doc, "//generatoritem/effect/parameter[1]/value"),
            std::vector<std::string>{"\r\r"});
}

TEST_F(CreatingTitles, EmptyClipListWritesTheEmptySequence) {
  open("");
  const xml::Document doc = created();
  EXPECT_EQ(texts(doc, "//track").size(), 6U);
  EXPECT_TRUE(texts(doc, "//clipitem | //generatoritem").empty());
  EXPECT_TRUE(out.lines.back() == "...done!" || out.lines.back() == "----------");
}

TEST_F(CreatingTitles, FailureNamesTheClipAndKeepsThePreviousFile) {
  test::write_file(*output, "previous run");
  const auto failure = [this](const std::string& body) {
    open(body);
    try {
      create();
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  EXPECT_NE(failure(media_clip("A", "f", 10, file_definition("f", "a.mov"), "FALSE", 25,
                               audio_track(5)))
                .find("clip 1 \"A\" (<clip> at line 4 of " + dir.file("dailies.xml") + ") has 5 audio"),
            std::string::npos);
  EXPECT_NE(failure("<clip><name>V</name><duration>3</duration><rate><ntsc>FALSE</ntsc><timebase>"
                    "25</timebase></rate><logginginfo><scene/><shottake/><lognote/></logginginfo>"
                    "<media><audio><track><clipitem>" + file_definition("f", "a.mov") +
                    "</clipitem></track></audio></media></clip>")
                .find("clip 1 \"V\" (<clip> at line 4 of " + dir.file("dailies.xml") + ") has no video"),
            std::string::npos);
  std::string no_start = media_clip("S", "f", 10, file_definition("f", "s.mov"));
  no_start.replace(no_start.find("<start>-1</start>"), 17, "");
  EXPECT_NE(failure(no_start).find("its video clip item <clipitem> at line 4 of " +
                                   dir.file("dailies.xml") + " has no <start>"),
            std::string::npos);
  EXPECT_EQ(test::read_file(*output), "previous run");
  output.reset();
  EXPECT_NE(failure("").find("no output folder is known"), std::string::npos);
  EXPECT_THROW(create_fcp_xml({}, {}, settings, dir.file("x.xml"), out), std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(dir.file("x.xml")));
}

}  // namespace
}  // namespace quillory
