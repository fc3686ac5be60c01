#include "titles/create_fcp_xml.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "source/get_info_from_clips.h"
#include "test_support.h"
#include "titles/sequence_templates.h"
#include "xml/xml_nodes.h"
#include "xml/xpath_query.h"

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
    test::write_file(dir.file("dailies.xml"), test::xmeml(body));
    opened = get_info_from_clips(dir.file("dailies.xml"), built_in_template(), out);
  }
  void create() { create_fcp_xml(opened.templates, opened.clips, settings, output, out); }
  // The texts of the matches in the written document, each followed by "|".
  std::string created(const char* path) {
    create();
    return test::texts(test::parse(test::read_file(*output)), path);
  }
  // The message of the error that creating titles ends with.
  std::string failure(const std::string& body) {
    open(body);
    try {
      create();
    } catch (const std::runtime_error& error) {
      return error.what();
    }
    return "no error";
  }

  test::TempDir dir;
  OpenedSource opened;
  TitleSettings settings;
  RecordingSink out;
  std::optional<std::string> output = dir.file("Quillory.xml");
};

TEST_F(CreatingTitles, LaysClipsEndToEndWithTitlesAndAudio) {
  open(media_clip("A", "f", 100, file_definition("f", "a.mov", "R1"), "FALSE", 25, audio_track(2)) +
       media_clip("B", "f", 50, "", "FALSE", 25, audio_track(1) + audio_track(1)));
  settings.sequence_name = "Dailies & more";
  settings.lines = {{{"", "Clip Name"}, {"Reel", "Reel Name"}}};
  settings.set_rate(*find_frame_rate_by_type("PAL (25fps)"));
  out.lines.clear();
  EXPECT_EQ(created("//sequence/name | //sequence/rate/timebase"), "Dailies & more|25|");
  EXPECT_EQ(out.lines, (std::vector<std::string>{"Clip 1 at 0", "  A, a.mov, 100",
                                                 "Clip 2 at 100", "  B, a.mov, 50"}));
  const std::pair<const char*, const char*> placed[] = {
      {"//video/track[1]/clipitem/start | //video/track[1]/clipitem/end", "0|100|100|150|"},
      {"//audio/track[1]/clipitem/start | //audio/track[2]/clipitem/end", "0|100|100|150|"},
      {"//audio/track[3]/clipitem", ""},
      {"//generatoritem/name", "Quillory Card|Quillory Card|"},
      {"//generatoritem/*[self::duration or self::out or self::start or self::in]",
       "100|0|100|0|50|0|50|100|"},
      {"//generatoritem/effect/parameter[1]/value", "A\rReel R1\r|B\rReel R1\r|"},
      {"//link/mediatype | //link/trackindex | //link/clipindex | //link/groupindex", ""},
      {"count(//link/linkclipref)", "6|"},
      {"//effectid[.='Timecode Reader']", ""},
  };
  for (const auto& [path, texts] : placed) EXPECT_EQ(created(path), texts) << path;
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
  EXPECT_EQ(created("//generatoritem/effect/parameter/value | //effectid[.='Timecode Reader']"),
            "first|hi\r|");
  settings.timecode_reader = true;
  EXPECT_EQ(created("//video/track[1]/clipitem/filter[last()]/effect/effectid | "
                    "//generatoritem//effectid[.='Timecode Reader']"),
            "Timecode Reader|");
  settings.template_name = "No such template";
  EXPECT_EQ(created("//generatoritem/@id"), "Quillory Card|");
}

// The writer drops the blank text between elements to indent the document; a title whose
// lines are all empty is blank text too, but it is content and must keep its line ends.
TEST_F(CreatingTitles, TitleOfEmptyLinesKeepsItsCarriageReturns) {
  open(media_clip("A", "f", 10, file_definition("f", "a.mov"), "FALSE", 25, audio_track(4)));
  settings.lines = {{{"", " "}, {"", " "}}};
  EXPECT_EQ(created("//generatoritem/effect/parameter[1]/value"), "\r\r|");
  // Runs change neither the source document nor the next run's file.
  const std::string first = test::read_file(*output);
  create();
  EXPECT_EQ(test::read_file(*output), first);
  EXPECT_EQ(xml::text_content(xml::XPathQuery(".//start").first(opened.clips[0].xml)), "-1");
}

TEST_F(CreatingTitles, EmptyClipListWritesTheEmptySequence) {
  open("");
  EXPECT_EQ(created("count(//track)"), "6|");
  EXPECT_EQ(created("//clipitem | //generatoritem"), "");
}

TEST_F(CreatingTitles, FailureNamesTheClipAndKeepsThePreviousFile) {
  test::write_file(*output, "previous run");
  std::string no_start = media_clip("S", "f", 10, file_definition("f", "s.mov"));
  no_start.replace(no_start.find("<start>-1</start>"), 17, "");
  const std::string source = dir.file("dailies.xml");
  const std::pair<std::string, std::string> cases[] = {
      {media_clip("A", "f", 10, file_definition("f", "a.mov"), "FALSE", 25, audio_track(5)),
       "clip 1 \"A\" (<clip> at line 4 of " + source + ") has 5 audio"},
      {"<clip><name>V</name><duration>3</duration><rate><ntsc>FALSE</ntsc><timebase>25</timebase>"
       "</rate><logginginfo><scene/><shottake/><lognote/></logginginfo><media><audio><track>"
       "<clipitem>" + file_definition("f", "a.mov") + "</clipitem></track></audio></media></clip>",
       "clip 1 \"V\" (<clip> at line 4 of " + source + ") has no video"},
      {no_start, "its video clip item <clipitem> at line 4 of " + source + " has no <start>"},
  };
  for (const auto& [body, message] : cases) {
    EXPECT_NE(failure(body).find(message), std::string::npos) << failure(body);
  }
  EXPECT_EQ(test::read_file(*output), "previous run");
  output.reset();
  EXPECT_NE(failure("").find("no output folder is known"), std::string::npos);
  EXPECT_THROW(create_fcp_xml({}, {}, settings, dir.file("x.xml"), out), std::runtime_error);
  EXPECT_FALSE(std::filesystem::exists(dir.file("x.xml")));
}

}  // namespace
}  // namespace quillory
