// Real exports written by other editing programs: each must either be written as a document
// that parses, or be refused with exit 1 and a message that names the file (and, for a clip
// that lacks something, the clip and its line), writing nothing. Recording the outcome of each
// file (tests/cli/corpus_outcomes) makes any change of behaviour show.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "test_support.h"

namespace quillory {
namespace {

namespace fs = std::filesystem;

std::map<std::string, std::string> recorded_outcomes() {
  std::map<std::string, std::string> outcomes;
  std::ifstream in(QUILLORY_CORPUS_OUTCOMES);
  for (std::string name, outcome; in >> name;) {
    if (name.front() == '#') {
      std::getline(in, outcome);
    } else if (in >> outcome) {
      outcomes[name] = outcome;
    }
  }
  return outcomes;
}

TEST(Corpus, EveryRealExportOpensAndExportsOrIsRefusedClearly) {
  if (!fs::is_directory(QUILLORY_CORPUS_DIR)) GTEST_SKIP() << "no corpus beside the project";
  const auto outcomes = recorded_outcomes();
  std::size_t seen = 0;
  for (const auto& entry : fs::directory_iterator(QUILLORY_CORPUS_DIR)) {
    if (entry.path().extension() != ".xml") continue;
    ++seen;
    SCOPED_TRACE(entry.path().filename().string());
    const auto recorded = outcomes.find(entry.path().filename().string());
    ASSERT_NE(recorded, outcomes.end()) << "record the outcome of the new file";
    test::TempDir dir;
    const auto result = test::run_command(
        {QUILLORY_BINARY, "--output", dir.file("out.xml"), "--tcr", entry.path().string()},
        {"XDG_DATA_HOME=" + dir.path().string()});
    EXPECT_EQ(result.out.rfind("opening...\n", 0), 0U);
    if (recorded->second == "written") {
      EXPECT_EQ(result.exit_code, 0) << result.err;
      EXPECT_EQ(test::texts(test::parse(test::read_file(dir.file("out.xml"))),
                            "count(/xmeml/sequence/media/video/track)"),
                "2|");
      continue;
    }
    const std::string& err = result.err;
    const auto path = err.find(entry.path().string());
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(err.rfind("quillory: ", 0), 0U) << err;
    EXPECT_NE(path, std::string::npos) << err;
    if (recorded->second == "not-xmeml") {
      EXPECT_NE(err.find(" is not an xmeml document", path), std::string::npos) << err;
    } else {  // quillory: clip [N] "NAME" (<clip> at line L of PATH) has ...
      EXPECT_LT(err.find("clip "), err.find(" at line ")) << err;
      EXPECT_LT(err.find(" at line "), path) << err;
      EXPECT_NE(err.find(") has ", path), std::string::npos) << err;
    }
    EXPECT_FALSE(fs::exists(dir.file("out.xml")));
  }
  EXPECT_EQ(seen, outcomes.size());
}

}  // namespace
}  // namespace quillory
