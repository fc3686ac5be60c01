// End-to-end cases: each folder of tests/cases holds a source document and what running the
// quillory binary on it must give.
//
//   input.xml          the source document
//   args               optional: one argument per line, given before the source path
//   expected.xml       the written document, compared as an XML tree (blank text ignored); a
//                      case without one writes nothing (a listing or a preview)
//   expected-stdout    optional: standard output, byte for byte
//   expected-exit      optional: the exit status (default 0)
//   expected-stderr    optional: lines of text that standard error must contain, each somewhere
//   previous-output    optional: an earlier output file; a failing run must leave it as it was
//
// QUILLORY_UPDATE_GOLDEN=1 rewrites expected.xml and expected-stdout from the actual run.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "test_support.h"

namespace quillory {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> case_names() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(QUILLORY_CASES_DIR)) {
    if (entry.is_directory()) names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

// One entry per line; none when the file does not exist.
std::vector<std::string> read_lines(const fs::path& file) {
  std::vector<std::string> lines;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

class Case : public ::testing::TestWithParam<std::string> {};

TEST_P(Case, RunsAsRecorded) {
  const fs::path dir = fs::path(QUILLORY_CASES_DIR) / GetParam();
  const bool update = std::getenv("QUILLORY_UPDATE_GOLDEN") != nullptr;
  test::TempDir home;
  fs::create_directories(home.path() / ".local/share/Ferncroft");
  const std::string output = (home.path() / ".local/share/Ferncroft/Quillory.xml").string();
  const bool has_previous = fs::exists(dir / "previous-output");
  if (has_previous) fs::copy_file(dir / "previous-output", output);

  std::vector<std::string> argv{QUILLORY_BINARY};
  for (auto& arg : read_lines(dir / "args")) argv.push_back(arg);
  argv.push_back((dir / "input.xml").string());
  const auto result = test::run_command(argv, {"HOME=" + home.path().string(), "XDG_DATA_HOME="});

  const int expected_exit =
      fs::exists(dir / "expected-exit") ? std::stoi(test::read_file(dir / "expected-exit")) : 0;
  ASSERT_EQ(result.exit_code, expected_exit) << result.err;
  for (const auto& line : read_lines(dir / "expected-stderr")) {
    EXPECT_NE(result.err.find(line), std::string::npos) << result.err;
  }
  const bool writes = fs::exists(dir / "expected.xml");
  if (update && expected_exit == 0) {
    if (writes) test::write_file(dir / "expected.xml", test::read_file(output));
    test::write_file(dir / "expected-stdout", result.out);
  }
  if (fs::exists(dir / "expected-stdout")) {
    EXPECT_EQ(result.out, test::read_file(dir / "expected-stdout"));
  }
  if (expected_exit != 0 || !writes) {
    if (has_previous) {
      EXPECT_EQ(test::read_file(output), test::read_file(dir / "previous-output"));
    } else {
      EXPECT_FALSE(fs::exists(output));
    }
    return;
  }
  EXPECT_NE(result.err.find("quillory: wrote " + output), std::string::npos) << result.err;
  EXPECT_EQ(test::tree_difference(test::read_file(dir / "expected.xml"), test::read_file(output)),
            "");
  EXPECT_EQ(fs::directory_iterator(home.path() / ".local/share/Ferncroft")->path(), output)
      << "no temporary file may be left beside the output";
}

INSTANTIATE_TEST_SUITE_P(Cli, Case, ::testing::ValuesIn(case_names()),
                         [](const auto& info) { return info.param; });

}  // namespace
}  // namespace quillory
