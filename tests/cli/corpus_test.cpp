// Real exports written by other editing programs: each must either be written as a document
// that parses, or be refused with exit 1 and a message that names the file (and, for a clip
// that lacks something, the clip and its line), writing nothing. Recording the outcome of each
// file makes any change of behaviour show.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "test_support.h"

namespace quillory {
namespace {

namespace fs = std::filesystem;

// What standard error must hold, after the file's path, for a refusal; "" for a written file.
const std::map<std::string, std::string>& recorded_outcomes() {
  static const std::string written;
  static const std::string not_xmeml = " is not an xmeml document";
  static const std::string clip_refused = ") has ";  // clip "NAME" (<clip> at line N of FILE) has
  static const std::map<std::string, std::string> outcomes{
      {"autoeditor_out_60p.xml", written},
      {"ccnmtl_fcp6_conecta_takes.xml", written},
      {"ccnmtl_fcp6_markp_tcr.xml", written},
      {"cutsmith_other_rootclips_cjk.xml", clip_refused},
      {"nick_resolve_24p.xml", written},
      {"nrk_fcp7_msub_8ch_bwf.xml", clip_refused},
      {"nrk_other_v3_no_scene_master.xml", clip_refused},
      {"nrk_ppro_cs6_audio_only_masters.xml", clip_refused},
      {"otio_filter_fragment.xml", not_xmeml},
      {"otio_hiero_export.xml", written},
      {"otio_ppro_empty_name_tags.xml", written},
      {"otio_ppro_enable_property.xml", written},
      {"otio_ppro_example.xml", written},
      {"otio_ppro_generators.xml", written},
      {"otio_ppro_just_track.xml", written},
      {"otio_ppro_kdenlive_src.xml", written},
  };
  return outcomes;
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
    const auto result = test::run_command(
        {QUILLORY_BINARY, "--output", dir.file("out.xml"), "--tcr", entry.path().string()},
        {"XDG_DATA_HOME=" + dir.path().string()});
    EXPECT_EQ(result.out.rfind("opening...\n", 0), 0U);
    if (recorded->second.empty()) {
      EXPECT_EQ(result.exit_code, 0) << result.err;
      EXPECT_EQ(test::texts(test::parse(test::read_file(dir.file("out.xml"))),
                            "count(/xmeml/sequence/media/video/track)"),
                "2|");
      continue;
    }
    EXPECT_EQ(result.exit_code, 1);
    const std::string& err = result.err;
    EXPECT_EQ(err.rfind("quillory: ", 0), 0U) << err;
    const auto path = err.find(entry.path().string());
    EXPECT_NE(path, std::string::npos) << err;
    EXPECT_NE(err.find(recorded->second, path), std::string::npos) << err;
    if (recorded->second == ") has ") {
      EXPECT_LT(err.find("clip "), err.find(" at line ")) << err;
      EXPECT_LT(err.find(" at line "), path) << err;
    }
    EXPECT_FALSE(fs::exists(dir.file("out.xml")));
  }
  EXPECT_EQ(seen, recorded_outcomes().size());
}

}  // namespace
}  // namespace quillory
