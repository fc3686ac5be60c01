#include "source/fcpxml_time.h"

#include <gtest/gtest.h>

#include "source/fcpxml_resources.h"
#include "startup/frame_rate.h"
#include "test_support.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

TEST(FcpxmlTime, ReadsAndWritesRationalSeconds) {
  struct Row {
    const char* text;
    std::optional<RationalTime> time;
    const char* written;  // "" where the text is not a time
  };
  const Row rows[] = {
      {"1001/30000s", RationalTime(1001, TimeScale(30000, 1)), "1001/30000s"},
      {"3600s", RationalTime(3600, TimeScale(1, 1)), "3600s"},
      {"0s", RationalTime(0, TimeScale(1, 1)), "0s"},
      {"100/2500s", RationalTime(100, TimeScale(2500, 1)), "100/2500s"},
      {"108000/30000s", RationalTime(108000, TimeScale(30000, 1)), "108000/30000s"},
      {"-1001/30000s", RationalTime(-1001, TimeScale(30000, 1)), "-1001/30000s"},
      {"1499755257/30000s", RationalTime(1499755257, TimeScale(30000, 1)), "1499755257/30000s"},
      {"3600", std::nullopt, ""},
      {"1/0s", std::nullopt, ""},
      {"1/-2s", std::nullopt, ""},
      {" 3600s", std::nullopt, ""},
      {"s", std::nullopt, ""},
      {"1.5s", std::nullopt, ""},
      {"1099511627777s", std::nullopt, ""},  // 2^40 + 1: past any edit
      {"1/16777217s", std::nullopt, ""},
  };
  for (const Row& row : rows) {
    const std::optional<RationalTime> time = read_fcpxml_time(row.text);
    EXPECT_EQ(time, row.time) << row.text;
    if (time) {
      EXPECT_EQ(fcpxml_time_text(*time), row.written) << row.text;
    }
  }
  EXPECT_EQ(fcpxml_time_text(FrameRate(30, true).frames(2)), "2002/30000s");
  EXPECT_EQ(fcpxml_time_text(FrameRate(30, true).frames(30000)), "1001s");
  EXPECT_EQ(fcpxml_time_text(FrameRate(25, false).frames(3)), "3/25s");
}

TEST(FcpxmlTime, FrameDurationsFindTheirRateRows) {
  EXPECT_EQ(find_frame_rate_by_duration(*read_fcpxml_time("1001/30000s"))->type,
            "NTSC/HD (29.97fps)");
  EXPECT_EQ(find_frame_rate_by_duration(*read_fcpxml_time("100/2500s"))->type, "PAL (25fps)");
  EXPECT_EQ(find_frame_rate_by_duration(*read_fcpxml_time("1001/24000s"))->type, "24P (24fps)");
  EXPECT_EQ(find_frame_rate_by_duration(*read_fcpxml_time("1/60s"))->type, "HD (60fps)");
  EXPECT_FALSE(find_frame_rate_by_duration(*read_fcpxml_time("1/48s")));
  EXPECT_EQ(find_frame_rate_by_duration(*read_fcpxml_time("1000/30000s"))->type, "Video/HD (30fps)");
}

TEST(FcpxmlResources, FindsTheFirstOfAnIdAndNamesAnAssetsFile) {
  const xml::Document doc = test::parse(R"(<fcpxml version="1.11"><resources>
    <format id="r1" frameDuration="1001/30000s"/>
    <asset id="r2" hasVideo="1"><media-rep kind="proxy-media" src="file:///p/proxy.mov"/>
      <media-rep kind="original-media" src="file:///Volumes/A%20B/A001%23C003.mov"/></asset>
    <asset id="r2" hasVideo="0"/>
    <asset id="r3" src="file:///old/clip.mov"/>
    <asset id="r4"><media-rep kind="proxy-media" src="file:///p/only%20proxy.mov"/></asset>
    <asset id="r5" src="file:///old/room%19tone.wav"/>
    </resources></fcpxml>)");
  const xmlNode* root = xmlDocGetRootElement(doc.get());
  EXPECT_EQ(fcpxml_version(root), "1.11");
  EXPECT_TRUE(fcpxml_version_read("1.8"));
  EXPECT_FALSE(fcpxml_version_read("1.2"));
  const FcpxmlResources resources(root);
  EXPECT_TRUE(asset_has_video(resources.find("r2")));
  EXPECT_EQ(resources.find("r1", "asset"), nullptr);
  EXPECT_EQ(resources.frame_duration("r1"), RationalTime(1001, TimeScale(30000, 1)));
  EXPECT_FALSE(resources.frame_duration("r2"));
  EXPECT_EQ(asset_media_file_name(resources.find("r2")), "A001#C003.mov");
  EXPECT_EQ(asset_media_file_name(resources.find("r3")), "clip.mov");
  EXPECT_EQ(asset_media_file_name(resources.find("r4")), "only proxy.mov");
  EXPECT_EQ(asset_media_file_name(resources.find("r5")), "room%19tone.wav");
}

}  // namespace
}  // namespace quillory
