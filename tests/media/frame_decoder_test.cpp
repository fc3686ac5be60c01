// Frames of a clip made with the ffmpeg command, found as documents name them.

#include "media/frame_decoder.h"

#include <gtest/gtest.h>

#include <memory>

#include "media/clip_media.h"
#include "media/colour_clip.h"
#include "media/media_url.h"
#include "test_support.h"

namespace quillory::media {
namespace {

// The clip, in a folder and under a name that a file URL must percent-encode.
class FrameDecoderTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = std::make_unique<test::TempDir>();
    std::filesystem::create_directories(folder_->path() / "day 1" / "A001");
    clip_ = (folder_->path() / "day 1" / "A001" / "A 100%.mov").string();
    ASSERT_TRUE(test::make_colour_clip(clip_));
  }
  static void TearDownTestSuite() { folder_.reset(); }
  static inline std::unique_ptr<test::TempDir> folder_;
  static inline std::string clip_;
};

TEST_F(FrameDecoderTest, EachFrameHasItsRunsColour) {
  struct Case {
    long long frame;
    int timebase;
    bool ntsc;
    std::size_t run;
  };
  const Case cases[] = {
      {0, 25, false, 0},  {4, 25, false, 0}, {5, 25, false, 1},   {11, 25, false, 2},
      {12, 25, false, 2}, {19, 25, false, 3}, {500, 25, false, 3}, {9, 0, false, 1},
      // Counted at 50 frames a second, frame 20 falls at 0.4 s: the third run.
      {20, 50, false, 2}, {10, 30, true, 1}};
  for (const Case& c : cases) {
    const RgbImage image = decode_frame(
        clip_, {c.frame, c.timebase > 0 ? std::optional(FrameRate(c.timebase, c.ntsc)) : std::nullopt});
    ASSERT_EQ(image.width, 64);
    ASSERT_EQ(image.height, 36);
    ASSERT_EQ(image.pixels.size(), 64u * 36u * 3u);
    const auto& expected = test::kColourRuns[c.run];
    const std::uint8_t* centre = &image.pixels[(18 * 64 + 32) * 3];
    EXPECT_NEAR(centre[0], expected.red, 24) << "frame " << c.frame << " at " << c.timebase;
    EXPECT_NEAR(centre[1], expected.green, 24) << "frame " << c.frame << " at " << c.timebase;
    EXPECT_NEAR(centre[2], expected.blue, 24) << "frame " << c.frame << " at " << c.timebase;
  }
}

TEST_F(FrameDecoderTest, FilesThatGiveNoPictureSayWhy) {
  const std::string notes = folder_->file("notes.mov");
  test::write_file(notes, "a log of the day's shots, not a movie\n");
  for (const std::string& path : {folder_->file("missing.mov"), notes, folder_->path().string()}) {
    EXPECT_THROW(decode_frame(path, {}), MediaError) << path;
  }
}

// What documents write, found on this machine: the URL's own path, else the file of its name
// anywhere below the chosen media folder.
TEST_F(FrameDecoderTest, DocumentsPathsAreFoundOrRelinkedByName) {
  const std::string encoded = "file://localhost" + folder_->path().string() + "/day%201/A001/A%20100%25.mov";
  EXPECT_EQ(path_from_url(encoded), clip_);
  EXPECT_EQ(path_from_url("file:///Volumes/RAID/a.mov"), "/Volumes/RAID/a.mov");
  EXPECT_EQ(path_from_url("http://example.com/a.mov"), std::nullopt);
  EXPECT_EQ(path_from_url("file://localhost"), std::nullopt);

  const MediaFolder folder(folder_->path().string());
  struct Case {
    const char* url;
    const char* file_name;
    bool with_folder;
    bool found;
  };
  const Case cases[] = {
      {"", "", false, true},  // the encoded URL: there as written
      {"file://localhost/Volumes/RAID/Day_01/A%20100%25.mov", "", true, true},
      {"file://localhost/Volumes/RAID/Day_01/A%20100%25.mov", "", false, false},
      {"", "A 100%.mov", true, true},  // no URL: the file's name
      {"file://localhost/Volumes/RAID/Day_01/A001C003.mov", "A 100%.mov", true, false},
  };
  for (const Case& c : cases) {
    ClipRecord clip;
    clip.path_url = *c.url != 0 ? c.url : (*c.file_name != 0 ? "" : encoded);
    clip.file_name = c.file_name;
    const auto found = locate_media(clip_media(clip), c.with_folder ? &folder : nullptr);
    EXPECT_EQ(found, c.found ? std::optional<std::string>(clip_) : std::nullopt) << c.url;
  }
}

}  // namespace
}  // namespace quillory::media
