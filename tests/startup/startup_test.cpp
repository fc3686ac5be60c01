#include "startup/startup.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <system_error>
#include <tuple>

#include "startup/app_data_folders.h"
#include "startup/frame_rates.h"
#include "test_support.h"

namespace quillory {
namespace {

using test::EnvGuard;
using test::TempDir;

TEST(StartUp, CreatesFerncroftOnceOrStopsWithTheSystemsReason) {
  TempDir dir;
  const std::string folder = dir.file("Ferncroft");
  const OutputPaths paths = start_up({dir.path().string()});
  EXPECT_EQ(*paths.APP_SUPPORT_SUBFOLDER + " " + *paths.TEMP_XML_FILE,
            folder + " " + folder + "/Quillory.xml");
  EXPECT_FALSE(std::filesystem::exists(*paths.TEMP_XML_FILE));
  test::write_file(folder + "/keep.txt", "mine");
  EXPECT_EQ(start_up({dir.path().string()}).TEMP_XML_FILE, paths.TEMP_XML_FILE);
  EXPECT_EQ(test::read_file(folder + "/keep.txt"), "mine");

  test::write_file(folder + "/Ferncroft", "a file, not a folder");
  for (const auto& [parent, reason] : {std::pair{folder, EEXIST}, std::pair{dir.file("no/parent"), ENOENT}}) {
    try {
      start_up({parent});
      ADD_FAILURE() << "expected an error for " << parent;
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.code().value(), reason);
      EXPECT_NE(std::string(error.what()).find(parent + "/Ferncroft"), std::string::npos);
    }
  }
}

// A new account: the data folder's missing levels are made, for the owner alone.
TEST(StartUp, FolderLookupPrefersAnAbsoluteXdgDataHomeMakesItAndExpandsTilde) {
  EXPECT_FALSE(start_up({}).TEMP_XML_FILE.has_value());
  TempDir dir;
  const std::string home = dir.file("editor");
  EnvGuard home_variable("HOME", home.c_str());
  for (const auto& [xdg, folder] : {std::pair{dir.file("data/share"), dir.file("data/share")},
                                    std::pair{std::string("relative/share"), home + "/.local/share"}}) {
    EnvGuard data("XDG_DATA_HOME", xdg.c_str());
    EXPECT_EQ(application_support_folders(), std::vector<std::string>{folder});
    EXPECT_EQ(std::filesystem::status(folder).permissions(), std::filesystem::perms::owner_all);
  }
  EXPECT_EQ(start_up().TEMP_XML_FILE, home + "/.local/share/Ferncroft/Quillory.xml");
  EXPECT_EQ(expand_tilde("~/x") + " " + expand_tilde("~") + " " + expand_tilde("~other/x") + " " +
                expand_tilde("/abs/~"),
            home + "/x " + home + " ~other/x /abs/~");
  // A data folder that cannot be made names itself and where else to point.
  test::write_file(dir.file("file"), "");
  EnvGuard blocked("XDG_DATA_HOME", dir.file("file/share").c_str());
  try {
    application_support_folders();
    ADD_FAILURE() << "expected an error";
  } catch (const std::system_error& error) {
    EXPECT_NE(std::string(error.what()).find(dir.file("file/share") + " (set XDG_DATA_HOME"),
              std::string::npos) << error.what();
  }
  EnvGuard no_home("HOME", nullptr);
  EnvGuard no_data("XDG_DATA_HOME", nullptr);
  EXPECT_TRUE(application_support_folders().empty());
}

// Each row is found by its own timebase and flag, by both lookups. Strict reading takes the
// flag only as Final Cut Pro writes it; tolerant reading also in other letter cases and with
// blanks around it. A pair no row has is found by neither.
TEST(FrameRates, ATimebaseAndFlagFindTheirRow) {
  for (const auto& row : FRAME_RATES) {
    EXPECT_EQ(find_frame_rate(row.rate.ntsc_text(), row.rate.timebase())->type, row.type);
    EXPECT_EQ(find_frame_rate_loosely(row.rate.ntsc_text(), row.rate.timebase())->type, row.type);
    EXPECT_EQ(find_frame_rate(row.rate)->type, row.type);
  }
  const std::tuple<std::string_view, long long, std::string_view> misses[] = {
      {"True", 30, "NTSC/HD (29.97fps)"}, {" true ", 24, "24P (24fps)"}, {"TRUE", 25, ""},
      {"FALSE", 23, ""}};
  for (const auto& [ntsc, timebase, loosely] : misses) {
    EXPECT_FALSE(find_frame_rate(ntsc, timebase)) << ntsc << " " << timebase;
    const auto loose = find_frame_rate_loosely(ntsc, timebase);
    EXPECT_EQ(loose ? loose->type : "", loosely) << ntsc << " " << timebase;
  }
  EXPECT_EQ(default_sequence_rate({}).type, "NTSC/HD (29.97fps)");
  EXPECT_EQ(default_sequence_rate({"HD (50fps)", "PAL (25fps)"}).type, "HD (50fps)");
}

}  // namespace
}  // namespace quillory
