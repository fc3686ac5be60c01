#include "startup/startup.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <system_error>

#include "startup/app_data_folders.h"
#include "form/controller.h"
#include "startup/frame_rates.h"
#include "test_support.h"

namespace quillory {
namespace {

using test::EnvGuard;
using test::TempDir;

TEST(StartUp, CreatesFerncroftOnceAndFixesBothPaths) {
  TempDir dir;
  const std::string support = dir.path().string();
  const OutputPaths paths = start_up({support});
  EXPECT_EQ(paths.APP_SUPPORT_SUBFOLDER, support + "/Ferncroft");
  EXPECT_EQ(paths.TEMP_XML_FILE, support + "/Ferncroft/Quillory.xml");
  EXPECT_TRUE(std::filesystem::is_directory(support + "/Ferncroft"));
  EXPECT_FALSE(std::filesystem::exists(*paths.TEMP_XML_FILE));

  test::write_file(support + "/Ferncroft/keep.txt", "mine");
  EXPECT_EQ(start_up({support}).TEMP_XML_FILE, paths.TEMP_XML_FILE);
  EXPECT_EQ(test::read_file(support + "/Ferncroft/keep.txt"), "mine");
}

TEST(StartUp, CreationFailureNamesThePathAndTheSystemReason) {
  TempDir dir;
  test::write_file(dir.file("Ferncroft"), "a file, not a folder");
  try {
    start_up({dir.path().string()});
    FAIL() << "expected an error";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), EEXIST);
    EXPECT_NE(std::string(error.what()).find(dir.file("Ferncroft")), std::string::npos);
  }
  try {
    start_up({dir.file("no/such/parent")});
    FAIL() << "expected an error";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), ENOENT);
  }
}

TEST(StartUp, NoFolderGivesNoPathsAndExportSaysHowToSetOne) {
  EXPECT_FALSE(start_up({}).TEMP_XML_FILE.has_value());
  EnvGuard no_home("HOME", nullptr);
  EnvGuard no_xdg("XDG_DATA_HOME", nullptr);
  EXPECT_TRUE(application_support_folders().empty());
}

TEST(StartUp, FolderLookupPrefersAnAbsoluteXdgDataHomeAndExpandsTilde) {
  EnvGuard home("HOME", "/home/editor");
  {
    EnvGuard xdg("XDG_DATA_HOME", "/data/share");
    EXPECT_EQ(application_support_folders(), std::vector<std::string>{"/data/share"});
  }
  {
    EnvGuard xdg("XDG_DATA_HOME", "relative/share");
    EXPECT_EQ(application_support_folders(),
              std::vector<std::string>{"/home/editor/.local/share"});
  }
  EXPECT_EQ(expand_tilde("~/x"), "/home/editor/x");
  EXPECT_EQ(expand_tilde("~"), "/home/editor");
  EXPECT_EQ(expand_tilde("~other/x"), "~other/x");
  EXPECT_EQ(expand_tilde("/abs/~"), "/abs/~");
}

TEST(StartUp, OperationsAreMadeAvailableInOrder) {
  EXPECT_EQ(std::vector<std::string_view>(Controller::operation_names.begin(),
                                          Controller::operation_names.end()),
            (std::vector<std::string_view>{"parse_xml_file", "empty_sequence_xml",
                                           "lower_third_xml", "tcr_filter_xml", "get_files_info",
                                           "get_info_from_clips", "create_fcp_xml"}));
}

TEST(FrameRates, LookupMatchesFlagAndTimebaseExactly) {
  const auto type = [](std::string_view ntsc, long long timebase) {
    const auto rate = find_frame_rate(ntsc, timebase);
    return rate ? std::string(rate->type) : std::string("none");
  };
  EXPECT_EQ(type("TRUE", 24), "24P (24fps)");
  EXPECT_EQ(type("FALSE", 24), "Film (24fps)");
  EXPECT_EQ(type("FALSE", 25), "PAL (25fps)");
  EXPECT_EQ(type("TRUE", 30), "NTSC/HD (29.97fps)");
  EXPECT_EQ(type("FALSE", 30), "Video/HD (30fps)");
  EXPECT_EQ(type("FALSE", 50), "HD (50fps)");
  EXPECT_EQ(type("TRUE", 60), "HD (59.94fps)");
  EXPECT_EQ(type("FALSE", 60), "HD (60fps)");
  EXPECT_EQ(type("TRUE", 25), "none");
  EXPECT_EQ(type("TRUE", 50), "none");
  EXPECT_EQ(type("true", 24), "none");
  EXPECT_EQ(type("True", 30), "none");
  EXPECT_EQ(type(" TRUE", 30), "none");
  EXPECT_EQ(type("FALSE", 23), "none");
  EXPECT_EQ(FRAME_RATES[0].fcp_rate, (std::variant<int, double>(23.976)));
  EXPECT_EQ(FRAME_RATES[1].fcp_rate, (std::variant<int, double>(24)));
}

}  // namespace
}  // namespace quillory
