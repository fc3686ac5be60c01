// Real exports written by other editing programs: each must either be written as a document
// that parses, or be refused with exit 1 and a message that names the file (and, for a clip
// that lacks something, the clip and its line), writing nothing. Recording the outcome of each
// file makes any change of behaviour show.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "xml/xpath_query.h"
#include "test_support.h"

namespace quillory {
namespace {

namespace fs = std::filesystem;

enum class Outcome { Written, NotXmeml, Refused };

const std::map<std::string, Outcome>& recorded_outcomes() {
  static const std::map<std::string, Outcome> outcomes{
      {"autoeditor_out_60p.xml", Outcome::Written},
      {"cutsmith_other_rootclips_cjk.xml", Outcome::Refused},
      {"ccnmtl_fcp6_conecta_takes.xml", Outcome::Written},
      {"ccnmtl_fcp6_markp_tcr.xml", Outcome::Written},
      {"nick_resolve_24p.xml", Outcome::Written},
      {"nrk_fcp7_msub_8ch_bwf.xml", Outcome::Refused},
      {"nrk_other_v3_no_scene_master.xml", Outcome::Refused},
      {"nrk_ppro_cs6_audio_only_masters.xml", Outcome::Refused},
      {"otio_filter_fragment.xml", Outcome::NotXmeml},
      {"otio_hiero_export.xml", Outcome::Written},
      {"otio_ppro_empty_name_tags.xml", Outcome::Written},
      {"otio_ppro_enable_property.xml", Outcome::Written},
      {"otio_ppro_example.xml", Outcome::Written},
      {"otio_ppro_generators.xml", Outcome::Written},
      {"otio_ppro_just_track.xml", Outcome::Written},
      {"otio_ppro_kdenlive_src.xml", Outcome::Written},
  };
  return outcomes;
}

test::CommandResult run_quillory(const fs::path& source, const test::TempDir& dir,
                                 const std::vector<std::string>& options = {}) {
  std::vector<std::string> argv{QUILLORY_BINARY, "--output", dir.file("out.xml"), "--tcr"};
  argv.insert(argv.end(), options.begin(), options.end());
  argv.push_back(source.string());
  return test::run_command(argv, {"XDG_DATA_HOME=" + dir.path().string()});
}

TEST(Corpus, EveryRealExportOpensAndExportsOrIsRefusedClearly) {
  if (!fs::is_directory(QUILLORY_CORPUS_DIR)) GTEST_SKIP() << "no corpus beside the project";
  std::size_t seen = 0;
  for (const auto& entry : fs::directory_iterator(QUILLORY_CORPUS_DIR)) {
    if (entry.path().extension() != ".xml") continue;
    ++seen;
    const std::string name = entry.path().filename().string();
    SCOPED_TRACE(name);
    const auto recorded = recorded_outcomes().find(name);
    ASSERT_NE(recorded, recorded_outcomes().end()) << "record the outcome of the new file";
    test::TempDir dir;
    const std::string output = dir.file("out.xml");
    const auto result = run_quillory(entry.path(), dir);
    if (recorded->second == Outcome::Written) {
      EXPECT_EQ(result.exit_code, 0) << result.err;
      const xml::Document doc = test::parse(test::read_file(output));
      ASSERT_TRUE(doc);
      EXPECT_EQ(xml::XPathQuery("/xmeml/sequence/media/video/track").all(xml::as_node(doc.get())).size(), 2U);
    } else {
      EXPECT_EQ(result.exit_code, 1);
      const std::string says = recorded->second == Outcome::NotXmeml
                                   ? " is not an xmeml document"
                                   : ") has ";  // clip "NAME" (<clip> at line N of FILE) has ...
      const std::string where = recorded->second == Outcome::NotXmeml
                                    ? "quillory: " + entry.path().string()
                                    : " at line ";
      EXPECT_EQ(result.err.rfind("quillory: ", 0), 0U) << result.err;
      EXPECT_NE(result.err.find(entry.path().string()), std::string::npos) << result.err;
      EXPECT_NE(result.err.find(where), std::string::npos) << result.err;
      EXPECT_NE(result.err.find(says), std::string::npos) << result.err;
      EXPECT_FALSE(fs::exists(output));
    }
    EXPECT_EQ(result.out.rfind("opening...\n", 0), 0U);
  }
  EXPECT_EQ(seen, recorded_outcomes().size());
}

TEST(Corpus, ExampleDailiesGiveOneTitlePerMediaClip) {
  const fs::path source = fs::path(QUILLORY_EXAMPLES_DIR) / "dailies.xml";
  test::TempDir dir;
  const std::string output = dir.file("out.xml");
  const auto result = run_quillory(source, dir, {"--template", "Slate Card"});
  ASSERT_EQ(result.exit_code, 0) << result.err;
  const xml::Document doc = test::parse(test::read_file(output));
  ASSERT_TRUE(doc);
  const auto count = [&doc](const char* path) {
    return xml::XPathQuery(path).all(xml::as_node(doc.get())).size();
  };
  EXPECT_EQ(count("//video/track[2]/generatoritem"), 12U);
  EXPECT_EQ(count("//video/track[1]/clipitem"), 12U);
  EXPECT_EQ(count("//video/track[1]/clipitem/filter/effect[effectid='Timecode Reader']"), 12U);
  EXPECT_EQ(count("//generatoritem/effect[effectid='Outline Text']"), 12U);
}

}  // namespace
}  // namespace quillory
