// Import-safe output read back the way importers read it, by resolving ids.

#include <gtest/gtest.h>

#include <filesystem>

#include "import_view.h"
#include "test_support.h"

namespace quillory {
namespace {

// The example dailies written by the binary with `options`; the document's text.
std::string dailies(const test::TempDir& dir, const std::string& name,
                    std::vector<std::string> options, const std::string& source = QUILLORY_EXAMPLE) {
  options.insert(options.begin(), {QUILLORY_BINARY, "--quiet", "--output", dir.file(name)});
  options.push_back(source);
  const auto result = test::run_command(options, {"XDG_DATA_HOME=" + dir.path().string()});
  EXPECT_EQ(result.exit_code, 0) << result.err;
  return test::read_file(dir.file(name));
}

TEST(ImportSafe, DailiesReadBackAsWrittenAndTheSameRunWritesTheSameBytes) {
  const test::TempDir dir;
  const std::string safe = dailies(dir, "safe.xml", {"--import-safe"});
  const auto view = test::read_as_importers_do(safe);
  EXPECT_EQ(view.as_resolved, view.as_written);
  for (const auto& item : view.as_written) {
    if (item.rfind("V2 ", 0) == 0) {
      EXPECT_NE(item.find(" rate " + view.sequence_rate + " file "), std::string::npos) << item;
    } else {
      EXPECT_EQ(item.find(" file  text "), std::string::npos) << "an item without media: " << item;
    }
  }
  EXPECT_EQ(dailies(dir, "again.xml", {"--import-safe"}), safe);
  const auto uuid = [](const std::string& text) {
    return test::texts(test::parse(text), "/xmeml/sequence/uuid");
  };
  EXPECT_NE(uuid(dailies(dir, "renamed.xml", {"--import-safe", "--name", "Day 2"})), uuid(safe));
  // The UUIDs follow the source's bytes, not its path: a copy elsewhere writes the same file,
  // another export of the same file name (and sequence name) another sequence.
  std::string bytes = test::read_file(QUILLORY_EXAMPLE);
  for (const std::string day : {"day1", "day2"}) {
    std::filesystem::create_directory(dir.file(day));
    test::write_file(dir.file(day + "/dailies.xml"), bytes);
    bytes.replace(bytes.find("<lognote>"), 9, "<lognote>day 2 ");
  }
  EXPECT_EQ(dailies(dir, "copy.xml", {"--import-safe"}, dir.file("day1/dailies.xml")), safe);
  EXPECT_NE(uuid(dailies(dir, "day2.xml", {"--import-safe"}, dir.file("day2/dailies.xml"))), uuid(safe));
  // What the option is for: read so, the designed output loses titles and media.
  const auto plain = test::read_as_importers_do(dailies(dir, "plain.xml", {}));
  EXPECT_NE(plain.as_resolved, plain.as_written);
}

}  // namespace
}  // namespace quillory
