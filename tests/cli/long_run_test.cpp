// A run that fails late: the clips before the refused one were all placed, but nothing of
// them may reach the output.

#include <gtest/gtest.h>

#include <filesystem>

#include "test_support.h"

namespace quillory {
namespace {

TEST(LongRun, ClipRefusedAfterThousandsPlacedLeavesThePreviousOutputByteForByte) {
  const test::TempDir dir;
  std::string body = test::file_definition("f", "a.mov");
  for (int i = 0; i < 3000; ++i) body += test::media_clip("C" + std::to_string(i), "f", 25);
  const std::string item = "<track><clipitem><start>0</start><end>0</end></clipitem></track>";
  body += test::media_clip("Last", "f", 25, "", "FALSE", 25, item + item + item + item + item);
  test::write_file(dir.file("source.xml"), test::xmeml(body));
  const std::string previous = "<?xml version=\"1.0\"?>\n<xmeml>earlier titles</xmeml>\n";
  test::write_file(dir.file("titles.xml"), previous);

  const auto result = test::run_command(
      {QUILLORY_BINARY, "--output", dir.file("titles.xml"), dir.file("source.xml")},
      {"XDG_DATA_HOME=" + dir.path().string()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_NE(result.err.find("clip 3001 \"Last\""), std::string::npos) << result.err;
  EXPECT_NE(result.out.find("Clip 3000 at 74975\n"), std::string::npos);
  EXPECT_EQ(test::read_file(dir.file("titles.xml")), previous);
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir.path())) {
    ++files;
  }
  EXPECT_EQ(files, 3U) << "no temporary file may be left behind";
}

}  // namespace
}  // namespace quillory
