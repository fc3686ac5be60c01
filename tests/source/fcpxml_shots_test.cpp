#include "source/fcpxml_shots.h"

#include <gtest/gtest.h>

#include "source/fcpxml_clip_facts.h"
#include "source/fcpxml_time.h"
#include "test_support.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

// A 25 fps project over `spine`, with video assets "v" and "w", a sound file "s", a generator,
// a compound clip "cc" and a multicam "mc" whose angle "b" holds "w" from 200 s after a gap
// and a transition.
std::string project(const std::string& spine, const std::string& sequence_attributes = "",
                    const std::string& frame_duration = "100/2500s") {
  return R"(<fcpxml version="1.11"><resources>
    <format id="f" frameDuration=")" + frame_duration + R"(" width="1920" height="1080"/>
    <asset id="v" hasVideo="1" format="f" start="0s" duration="3600s"/>
    <asset id="w" hasVideo="1" format="f" start="0s" duration="3600s"/>
    <asset id="s" hasAudio="1" start="0s" duration="3600s"/>
    <effect id="g" name="Solids" uid=".../Solids.motn"/>
    <media id="cc" name="CC"><sequence format="f" duration="5s"><spine>
      <asset-clip ref="v" name="inside" offset="0s" start="40s" duration="5s"/></spine></sequence></media>
    <media id="mc" name="MC"><multicam format="f">
      <mc-angle name="A" angleID="a"><asset-clip ref="v" name="camA" offset="0s" start="50s" duration="100s"/></mc-angle>
      <mc-angle name="B" angleID="b"><gap offset="0s" duration="1s"/>
        <transition offset="1/2s" duration="1s"/>
        <asset-clip ref="w" name="camB" offset="1s" start="200s" duration="99s"/></mc-angle>
    </multicam></media>
  </resources><library><event name="E"><project name="P"><sequence format="f" duration="100s" )" +
         sequence_attributes + "><spine>" + spine + "</spine></sequence></project></event></library></fcpxml>";
}

std::string name_of(const xmlNode* item) {
  return item != nullptr ? xml::attribute(item, "name").value_or("?") : "-";
}

// "name first+length source-item@time anchor@time".
std::string describe(const FcpxmlShot& shot, const FcpxmlResources& resources) {
  std::string text = name_of(shot.item) + " " + std::to_string(shot.first_frame) + "+" +
                     std::to_string(shot.length);
  const FcpxmlMediaPoint media = fcpxml_media_point(shot.item, shot.item_time, resources);
  text += media.media_item != nullptr
              ? " " + name_of(media.media_item) + "@" + fcpxml_time_text(media.source_time)
              : " no-media";
  return text + " " + name_of(shot.anchor) + "@" + fcpxml_time_text(shot.anchor_time);
}

TEST(FcpxmlShots, FlattenTheTimelineIntoThePictureSeenAtEachFrame) {
  struct Row {
    const char* what;
    std::string document;
    std::vector<std::string> shots;
    long long title_lane;
  };
  const Row rows[] = {
      {"a connected clip over the middle of a primary clip, frames from tcStart",
       project(R"(<asset-clip ref="v" name="A" offset="3600s" start="10s" duration="10s">
                    <asset-clip ref="w" name="B" lane="1" offset="13s" start="100s" duration="2s"/>
                  </asset-clip>)", R"(tcStart="3600s")"),
       {"A 0+75 A@10s A@10s", "B 75+50 B@100s A@13s", "A 125+125 A@15s A@15s"}, 2},
      {"a secondary storyline counts its items' times from its own start",
       project(R"(<asset-clip ref="v" name="A" offset="0s" duration="10s">
                    <spine lane="1" offset="2s">
                      <asset-clip ref="w" name="C1" offset="0s" start="5s" duration="1s"/>
                      <transition name="Cross Dissolve" offset="19/25s" duration="2/25s"/>
                      <asset-clip ref="w" name="C2" offset="1s" start="20s" duration="1s"/>
                    </spine>
                  </asset-clip>)"),
       {"A 0+50 A@0s A@0s", "C1 50+25 C1@5s A@2s", "C2 75+25 C2@20s A@3s", "A 100+150 A@4s A@4s"},
       2},
      {"disabled, generator, gap, title and sound never seen; the connected clip runs past its "
       "parent",
       project(R"(<asset-clip ref="v" name="A" offset="0s" duration="4s">
                    <asset-clip ref="w" name="off" lane="2" offset="1s" duration="1s" enabled="0"/>
                    <video ref="g" name="solid" lane="1" offset="0s" duration="2s"/>
                    <asset-clip ref="w" name="B" lane="1" offset="3s" start="7s" duration="2s"/>
                  </asset-clip>
                  <gap name="gap" offset="4s" duration="2s">
                    <asset-clip ref="s" name="sound" lane="-1" offset="0s" duration="2s"/>
                  </gap>
                  <title ref="g" name="T" offset="6s" duration="1s"/>
                  <asset-clip ref="v" name="D" offset="7s" duration="1s" srcEnable="audio"/>)"),
       {"A 0+75 A@0s A@0s", "B 75+50 B@7s A@3s"}, 3},
      {"an audition plays its first pick in its place",
       project(R"(<audition offset="0s"><asset-clip ref="v" name="X" start="1s" duration="4s"/>
                    <asset-clip ref="w" name="Y" duration="2s"/></audition>)"),
       {"X 0+100 X@1s X@1s"}, 1},
      {"a multicam clip shows its first angle playing video (all when unsaid) at the multicam time",
       project(R"(<mc-clip ref="mc" name="M" offset="0s" start="10s" duration="5s">
                    <mc-source angleID="a" srcEnable="audio"/><mc-source angleID="b"/>
                  </mc-clip>
                  <mc-clip ref="mc" name="M2" offset="5s" start="6/5s" duration="1s">
                    <mc-source angleID="b" srcEnable="video"/></mc-clip>)"),
       {"M 0+125 camB@209s M@10s", "M2 125+25 camB@5005/25s M2@30/25s"}, 1},
      {"a compound clip is seen as a whole",
       project(R"(<ref-clip ref="cc" name="CC" offset="0s" duration="5s"/>)"),
       {"CC 0+125 no-media CC@0s"}, 1},
      {"Resolve's clips holding video, times in whole seconds over one",
       project(R"(<clip name="R1" offset="0/1s" start="0/1s" duration="2/1s">
                    <video ref="v" offset="0/1s" start="86400/1s" duration="2/1s"/>
                    <audio ref="s" lane="-1" offset="0/1s" start="86400/1s" duration="2/1s"/></clip>
                  <clip name="R2" offset="2/1s" start="10/1s" duration="1/1s">
                    <video ref="w" offset="10/1s" start="3600/1s" duration="1/1s"/></clip>)"),
       {"R1 0+50 ?@86400s R1@0s", "R2 50+25 ?@3600s R2@10s"}, 1},
      {"29.97 frames: a clip from source frame 1800 seen from the project's second frame",
       project(R"(<gap offset="0s" duration="1001/30000s"/>
                  <asset-clip ref="v" name="A" offset="1001/30000s" start="1801800/30000s"
                              duration="10010/30000s"/>)", R"(tcStart="0s")", "1001/30000s"),
       {"A 1+10 A@1801800/30000s A@1801800/30000s"}, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const xml::Document doc = test::parse(row.document);
    const xmlNode* root = xmlDocGetRootElement(doc.get());
    const FcpxmlResources resources(root);
    const xmlNode* sequence = xml::first_descendant(root, "sequence", "project");
    std::vector<std::string> shots;
    for (const FcpxmlShot& shot : fcpxml_shots(sequence, resources)) {
      shots.push_back(describe(shot, resources));
    }
    EXPECT_EQ(shots, row.shots);
    EXPECT_EQ(fcpxml_title_lane(sequence), row.title_lane);
  }
}

TEST(FcpxmlShots, LanesUsedCountThePictureLanesOfEveryStoryline) {
  const xml::Document doc = test::parse(project(R"(
      <asset-clip ref="v" name="A" offset="0s" duration="10s">
        <spine lane="2" offset="1s"><asset-clip ref="w" offset="0s" duration="1s"/></spine>
        <asset-clip ref="s" lane="-1" offset="0s" duration="10s"/>
      </asset-clip>
      <gap offset="10s" duration="1s"><title ref="g" lane="1" offset="0s" duration="1s"/></gap>)"));
  const xmlNode* sequence = xml::first_descendant(xmlDocGetRootElement(doc.get()), "sequence", "project");
  EXPECT_EQ(fcpxml_lanes_used(sequence), 3U);
  EXPECT_EQ(fcpxml_title_lane(sequence), 3);
}

}  // namespace
}  // namespace quillory
