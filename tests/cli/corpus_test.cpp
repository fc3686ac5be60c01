// Real exports written by other editing programs, each read strictly and with --tolerant: it
// must either be written as a document that parses, or be refused with exit 1 and a message
// that names the file (and, for a clip that lacks something, the clip and its line), writing
// nothing. Recording the outcome of each file (tests/cli/corpus_outcomes) makes any change of
// behaviour show. A file written both ways needed no assumption, so both files are the same.
// Every file written is written import-safe too, and must read back through its ids as written.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "import_view.h"
#include "test_support.h"

namespace quillory {
namespace {

namespace fs = std::filesystem;

using Outcomes = std::map<std::string, std::pair<std::string, std::string>>;

// File name: (strict outcome, tolerant outcome).
Outcomes recorded_outcomes() {
  Outcomes outcomes;
  std::ifstream in(QUILLORY_CORPUS_OUTCOMES);
  for (std::string name, strict, tolerant; in >> name;) {
    if (name.front() == '#') {
      std::getline(in, strict);
    } else if (in >> strict >> tolerant) {
      outcomes[name] = {strict, tolerant};
    }
  }
  return outcomes;
}

// Runs the file with --tcr (and `mode` when given); the written file's text, or "" when none.
std::string check_outcome(const fs::path& source, const std::string& outcome,
                          const std::string& mode) {
  SCOPED_TRACE(mode);
  test::TempDir dir;
  std::vector<std::string> argv{QUILLORY_BINARY, "--output", dir.file("out.xml"), "--tcr"};
  if (!mode.empty()) argv.push_back(mode);
  argv.push_back(source.string());
  const auto result = test::run_command(argv, {"XDG_DATA_HOME=" + dir.path().string()});
  EXPECT_EQ(result.out.rfind("opening...\n", 0), 0U);
  const std::string& err = result.err;
  if (outcome == "written" || outcome == "assumed") {
    EXPECT_EQ(result.exit_code, 0) << err;
    const bool warned = err.find("quillory: warning: clip ") != std::string::npos &&
                        err.find(" needed ") != std::string::npos;
    EXPECT_EQ(warned, outcome == "assumed") << err;
    const std::string written = test::read_file(dir.file("out.xml"));
    EXPECT_EQ(test::texts(test::parse(written), "count(/xmeml/sequence/media/video/track)"), "2|");
    // Import-safe, it reads back through its ids as written.
    argv.insert(argv.end() - 1, "--import-safe");
    EXPECT_EQ(test::run_command(argv, {"XDG_DATA_HOME=" + dir.path().string()}).exit_code, 0);
    const auto view = test::read_as_importers_do(test::read_file(dir.file("out.xml")));
    EXPECT_EQ(view.as_resolved, view.as_written);
    return written;
  }
  const auto path = err.find(source.string());
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(err.rfind("quillory: ", 0), 0U) << err;
  EXPECT_NE(path, std::string::npos) << err;
  if (outcome == "not-xmeml") {
    EXPECT_NE(err.find(" is not an xmeml document", path), std::string::npos) << err;
  } else {  // quillory: clip [N] "NAME" (<clip> at line L of PATH) has ...
    EXPECT_LT(err.find("clip "), err.find(" at line ")) << err;
    EXPECT_LT(err.find(" at line "), path) << err;
    EXPECT_NE(err.find(") has ", path), std::string::npos) << err;
  }
  EXPECT_FALSE(fs::exists(dir.file("out.xml")));
  return "";
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
    const auto& [strict, tolerant] = recorded->second;
    const std::string strictly = check_outcome(entry.path(), strict, "");
    const std::string tolerantly = check_outcome(entry.path(), tolerant, "--tolerant");
    if (strict == "written") {
      EXPECT_TRUE(strictly == tolerantly);
    }
  }
  EXPECT_EQ(seen, outcomes.size());
}

}  // namespace
}  // namespace quillory
