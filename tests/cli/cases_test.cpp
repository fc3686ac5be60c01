// End-to-end cases: each folder of tests/cases holds a source document and what running the
// quillory binary on it must give.
//
//   input.xml          the source document (input.fcpxml or the bundle input.fcpxmld for an
//                      FCPXML one)
//   args               optional: one argument per line, given before the source path
//   expected.xml       the written document, compared as an XML tree (blank text ignored); a
//                      case without one writes nothing (a listing or a preview); expected.fcpxml
//                      for an FCPXML source, which must also be valid against Apple's DTD of
//                      its version (where ../shared/fcpxml/dtd is there to check it)
//   expected-stdout    optional: standard output, byte for byte
//   expected-exit      optional: the exit status (default 0)
//   expected-stderr    optional: lines of text that standard error must contain, each somewhere
//   previous-output    optional: an earlier output file; a failing run must leave it as it was
//   expected-strict-stderr
//                      optional, for a case run with --tolerant: lines that standard error must
//                      contain when the same case runs without it, which must fail and write
//                      nothing
//   expected-strict.xml
//                      optional, for a case run with --tolerant: the document that the same
//                      case writes without it, where strict reading takes the source as it is
//
// A case that succeeds without --tolerant must give the same output, byte for byte, and the
// same standard output and error with it: tolerant reading changes nothing where it assumes
// nothing. Output written import-safe (--import-safe, or titles over a --sequence) must read
// back as written by a reader that resolves ids, as importers do, unless the case expects a
// warning that an id repeats.
//
// QUILLORY_UPDATE_GOLDEN=1 rewrites expected.xml and expected-stdout from the actual run.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "import_view.h"
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

// The case's source, and the names its expected and written documents have.
struct CaseFiles {
  std::string input = "input.xml";
  std::string expected = "expected.xml";
  std::string output = "Quillory.xml";
};

CaseFiles case_files(const fs::path& dir) {
  for (const char* input : {"input.fcpxml", "input.fcpxmld"}) {
    if (fs::exists(dir / input)) return {input, "expected.fcpxml", "Quillory.fcpxml"};
  }
  return {};
}

// One entry per line; none when the file does not exist.
std::vector<std::string> read_lines(const fs::path& file) {
  std::vector<std::string> lines;
  std::ifstream in(file);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

class Case : public ::testing::TestWithParam<std::string> {};

// Runs the binary on the case's input with its arguments (less any in `dropped`, more any in
// `added`), in a home of its own with the previous output, when the case has one, in place.
struct CaseRun {
  CaseRun(const fs::path& dir, const std::string& dropped = "", const std::string& added = "")
      : files(case_files(dir)),
        output((home.path() / ".local/share/Ferncroft" / files.output).string()) {
    fs::create_directories(home.path() / ".local/share/Ferncroft");
    if (fs::exists(dir / "previous-output")) fs::copy_file(dir / "previous-output", output);
    std::vector<std::string> argv{QUILLORY_BINARY};
    if (!added.empty()) argv.push_back(added);
    for (auto& arg : read_lines(dir / "args")) {
      if (dropped.empty() || arg != dropped) argv.push_back(arg);
    }
    argv.push_back((dir / files.input).string());
    result = test::run_command(argv, {"HOME=" + home.path().string(), "XDG_DATA_HOME="});
  }

  // The run failed or wrote nothing, and left the previous output as it was.
  void expect_nothing_written(const fs::path& dir) const {
    if (fs::exists(dir / "previous-output")) {
      EXPECT_EQ(test::read_file(output), test::read_file(dir / "previous-output"));
    } else {
      EXPECT_FALSE(fs::exists(output));
    }
  }

  test::TempDir home;
  const CaseFiles files;
  const std::string output;
  test::CommandResult result;
};

void expect_lines(const fs::path& file, const std::string& err) {
  for (const auto& line : read_lines(file)) EXPECT_NE(err.find(line), std::string::npos) << err;
}

TEST_P(Case, RunsAsRecorded) {
  const fs::path dir = fs::path(QUILLORY_CASES_DIR) / GetParam();
  const bool update = std::getenv("QUILLORY_UPDATE_GOLDEN") != nullptr;
  const CaseRun run(dir);
  const auto& result = run.result;
  const std::string& output = run.output;

  const int expected_exit =
      fs::exists(dir / "expected-exit") ? std::stoi(test::read_file(dir / "expected-exit")) : 0;
  ASSERT_EQ(result.exit_code, expected_exit) << result.err;
  expect_lines(dir / "expected-stderr", result.err);
  const std::string expected = run.files.expected;
  const bool writes = fs::exists(dir / expected);
  if (update && expected_exit == 0) {
    if (writes) test::write_file(dir / expected, test::read_file(output));
    test::write_file(dir / "expected-stdout", result.out);
  }
  if (fs::exists(dir / "expected-stdout")) {
    EXPECT_EQ(result.out, test::read_file(dir / "expected-stdout"));
  }
  if (fs::exists(dir / "expected-strict-stderr")) {
    const CaseRun strict(dir, "--tolerant");
    EXPECT_EQ(strict.result.exit_code, 1) << strict.result.err;
    expect_lines(dir / "expected-strict-stderr", strict.result.err);
    EXPECT_NE(strict.result.err.find(" (--tolerant accepts this)\n"), std::string::npos);
    strict.expect_nothing_written(dir);
  }
  if (fs::exists(dir / "expected-strict.xml")) {
    const CaseRun strict(dir, "--tolerant");
    ASSERT_EQ(strict.result.exit_code, 0) << strict.result.err;
    EXPECT_EQ(strict.result.out, result.out);
    EXPECT_EQ(test::tree_difference(test::read_file(dir / "expected-strict.xml"),
                                    test::read_file(strict.output)),
              "");
  }
  if (expected_exit != 0 || !writes) return run.expect_nothing_written(dir);
  EXPECT_NE(result.err.find("quillory: wrote " + output), std::string::npos) << result.err;
  EXPECT_EQ(test::tree_difference(test::read_file(dir / expected), test::read_file(output)), "");
  if (expected == "expected.fcpxml" && fs::is_directory(QUILLORY_FCPXML_DTD_DIR)) {
    EXPECT_EQ(test::fcpxml_dtd_problems(test::read_file(output), QUILLORY_FCPXML_DTD_DIR), "");
  }
  EXPECT_EQ(fs::directory_iterator(run.home.path() / ".local/share/Ferncroft")->path(), output)
      << "no temporary file may be left beside the output";
  // Import-safe xmeml output reads back as written, but where the case expects a warning that
  // an id still repeats.
  const auto args = read_lines(dir / "args");
  const bool import_safe = expected == "expected.xml" && std::find_if(args.begin(), args.end(), [](const std::string& arg) {
                             return arg == "--import-safe" || arg == "--sequence";
                           }) != args.end();
  if (import_safe && test::read_file(dir / "expected-stderr").find(" repeats ") == std::string::npos) {
    const auto view = test::read_as_importers_do(test::read_file(output));
    EXPECT_EQ(view.as_resolved, view.as_written);
  }
  if (!fs::exists(dir / "expected-strict-stderr") && !fs::exists(dir / "expected-strict.xml")) {
    const CaseRun tolerant(dir, "", "--tolerant");
    EXPECT_EQ(tolerant.result.out, result.out);
    EXPECT_EQ(tolerant.result.err.substr(0, result.err.find("quillory: wrote ")),
              result.err.substr(0, result.err.find("quillory: wrote ")));
    EXPECT_EQ(test::read_file(tolerant.output), test::read_file(output));
  }
}

INSTANTIATE_TEST_SUITE_P(Cli, Case, ::testing::ValuesIn(case_names()),
                         [](const auto& info) { return info.param; });

}  // namespace
}  // namespace quillory
