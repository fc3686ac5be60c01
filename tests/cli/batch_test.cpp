// Several sources in one run, through the real binary: each output what a run on its source
// alone writes, every failure named, nothing of a failed source left, standard output in the
// order the sources were given.

#include <gtest/gtest.h>

#include <signal.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "test_support.h"

namespace quillory {
namespace {

namespace fs = std::filesystem;

std::string two_clips() {
  return test::xmeml(test::file_definition("f", "a.mov") + test::media_clip("A", "f", 25) +
                     test::media_clip("B", "f", 50));
}

std::vector<std::string> files_in(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

class Batch : public ::testing::TestWithParam<const char*> {
 protected:
  Batch() {
    fs::copy_file(QUILLORY_EXAMPLE, dir.file("day1.xml"));
    test::write_file(dir.file("day2.xml"), "<project/>");
    test::write_file(dir.file("day3.xml"), two_clips());
    test::write_file(dir.file("day4.xml"), test::xmeml(test::media_clip("C", "f", 25)));
  }
  test::CommandResult quillory(std::vector<std::string> args) const {
    args.insert(args.begin(), QUILLORY_BINARY);
    return test::run_command(args, {"XDG_DATA_HOME=" + dir.path().string()});
  }
  test::TempDir dir;
};

TEST_P(Batch, WritesWhatEachSourceAloneWritesAndNamesEveryFailure) {
  const std::vector<std::string> days{dir.file("day1.xml"), dir.file("day2.xml"),
                                      dir.file("day3.xml"), dir.file("day4.xml")};
  std::vector<std::string> args{"--tcr", "--output-dir", dir.file("out"), "--jobs", GetParam()};
  args.insert(args.end(), days.begin(), days.end());
  const auto batch = quillory(args);
  EXPECT_EQ(batch.exit_code, 1) << batch.err;
  EXPECT_EQ(files_in(dir.file("out")), (std::vector<std::string>{"day1.xml", "day3.xml"}));

  std::string outputs;
  for (const auto& day : days) {
    const auto alone = quillory({"--tcr", "--output", dir.file("alone.xml"), day});
    outputs += alone.out;
    if (alone.exit_code != 0) continue;
    EXPECT_EQ(test::read_file(dir.file("out") / fs::path(day).filename()),
              test::read_file(dir.file("alone.xml")));
  }
  EXPECT_EQ(batch.out, outputs) << "each source's lines whole, in the order given";
  EXPECT_NE(batch.err.find(days[1] + " is not an xmeml document"), std::string::npos) << batch.err;
  EXPECT_NE(batch.err.find("clip \"C\" (<clip> at line 4 of " + days[3]), std::string::npos)
      << batch.err;
  const std::string summary =
      "quillory: 2 of 4 exports written; failed: " + days[1] + ", " + days[3] + "\n";
  ASSERT_GE(batch.err.size(), summary.size());
  EXPECT_EQ(batch.err.substr(batch.err.size() - summary.size()), summary);
}

INSTANTIATE_TEST_SUITE_P(Jobs, Batch, ::testing::Values("1", "2"));

TEST_F(Batch, RefusesWhatCannotBeWrittenBeforeReadingAnything) {
  fs::create_directory(dir.file("again"));
  fs::copy_file(dir.file("day3.xml"), dir.file("again/day3.xml"));
  const struct {
    std::vector<std::string> args;
    std::string said;
  } rows[]{
      {{dir.file("day1.xml"), dir.file("day3.xml")}, "several sources need --output-dir DIR"},
      {{"--output", dir.file("t.xml"), dir.file("day1.xml"), dir.file("day3.xml")},
       "several sources need --output-dir DIR"},
      {{"--output-dir", dir.file("out"), dir.file("day3.xml"), dir.file("again/day3.xml")},
       "would both write " + dir.file("out") + "/day3.xml"},
      {{"--output-dir", dir.file("out"), "--output", dir.file("t.xml"), dir.file("day3.xml")},
       "excludes"},
      {{"--jobs", "0", "--output-dir", dir.file("out"), dir.file("day3.xml")}, "--jobs"},
  };
  for (const auto& row : rows) {
    const auto result = quillory(row.args);
    EXPECT_EQ(result.exit_code, 2) << result.err;
    EXPECT_NE(result.err.find(row.said), std::string::npos) << result.err;
    EXPECT_FALSE(fs::exists(dir.file("out")));
    EXPECT_FALSE(fs::exists(dir.file("Ferncroft"))) << "nothing written, not even the data folder";
  }
}

TEST_F(Batch, ListsSeveralSourcesAsOneJsonArray) {
  const auto result = quillory({"--list", "--json", dir.file("day3.xml"), dir.file("day2.xml")});
  EXPECT_EQ(result.exit_code, 1);
  const auto alone = quillory({"--list", "--json", dir.file("day3.xml")});
  std::string element = "  {\n    \"source\": \"" + dir.file("day3.xml") + "\",\n  ";
  for (char c : alone.out.substr(2, alone.out.size() - 3)) element += c == '\n' ? "\n  " : std::string(1, c);
  EXPECT_EQ(result.out.substr(0, element.size() + 2), "[\n" + element) << result.out;
  EXPECT_NE(result.out.find(",\n  {\n    \"source\": \"" + dir.file("day2.xml") +
                            "\",\n    \"error\": \"quillory: "),
            std::string::npos) << result.out;
  EXPECT_EQ(result.out.substr(result.out.size() - 4), "}\n]\n");
}

// A batch stopped while it writes two files at once leaves neither temporary file.
TEST_F(Batch, StoppedWhileWritingSeveralLeavesNoTemporaryFile) {
  std::string many = test::file_definition("f", "a.mov");
  for (int i = 0; i < 20000; ++i) many += test::media_clip("C" + std::to_string(i), "f", 25);
  test::write_file(dir.file("big1.xml"), test::xmeml(many));
  fs::copy_file(dir.file("big1.xml"), dir.file("big2.xml"));
  fs::create_directory(dir.file("out"));
  const auto writing = [&] {
    std::size_t temporary = 0;
    for (const auto& name : files_in(dir.file("out"))) temporary += name.size() > 9 ? 1 : 0;
    return temporary;
  };
  bool stopped_while_writing = false;
  const auto result = test::run_command(
      {QUILLORY_BINARY, "--jobs", "2", "--output-dir", dir.file("out"), dir.file("big1.xml"),
       dir.file("big2.xml")},
      {"XDG_DATA_HOME=" + dir.path().string()}, [&](int pid) {
        // Both files under way, as a rule; on a machine too busy to run the two threads at
        // once, whichever is being written after a while.
        const auto start = std::chrono::steady_clock::now();
        const auto waited = [&](int seconds) {
          return std::chrono::steady_clock::now() - start > std::chrono::seconds(seconds);
        };
        while (writing() < 2 && !(writing() == 1 && waited(5)) && !waited(60)) {
          std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
        stopped_while_writing = writing() > 0;
        ::kill(pid, SIGTERM);
      });
  if (!stopped_while_writing && result.exit_code == 0) {
    // On a machine too busy to let the watch see a temporary file, the batch ended before it
    // could be stopped: then only its finished files are there.
    EXPECT_EQ(writing(), 0u);
    return;
  }
  EXPECT_EQ(result.exit_code, 128 + SIGTERM) << result.err;
  EXPECT_TRUE(files_in(dir.file("out")).empty());
}

}  // namespace
}  // namespace quillory
