#include <gtest/gtest.h>

#include "startup/frame_rate.h"

namespace quillory {
namespace {

constexpr FrameRate k_pal{25, false};
constexpr FrameRate k_ntsc{30, true};
constexpr FrameRate k_film{24, false};
constexpr FrameRate k_24p{24, true};

TEST(RationalTime, ConvertsBetweenScalesRoundingHalvesAwayFromZero) {
  struct Row {
    RationalTime from;
    TimeScale to;
    long long expected;
  };
  const Row rows[] = {
      {k_pal.frames(250), k_ntsc.per_second(), 300},   // 10 s of PAL on a 29.97 sequence
      {k_ntsc.frames(300), k_pal.per_second(), 250},   // and back
      {k_24p.frames(1000), k_film.per_second(), 1001},  // 41.708 s hold 1001 frames of 24
      {k_film.frames(1), k_ntsc.per_second(), 1},      // 1.2487 frames
      {RationalTime(1001, TimeScale(30000, 1)), k_ntsc.per_second(), 1},  // 1001/30000 s
      {RationalTime(1, TimeScale(2, 1)), TimeScale(1, 1), 1},             // half a second
      {RationalTime(-1, TimeScale(2, 1)), TimeScale(1, 1), -1},
      {RationalTime(3, TimeScale(4, 1)), TimeScale(2, 1), 2},  // 1.5 units
      {RationalTime(1, TimeScale(4, 1)), TimeScale(2, 1), 1},  // 0.5 units
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.from.rescaled_to(row.to).value(), row.expected)
        << row.from.value() << " at " << row.from.scale().units() << "/"
        << row.from.scale().seconds();
  }
}

TEST(RationalTime, RangeAcrossARateChangeKeepsItsEnd) {
  // Three PAL clips of 7 frames end to end: converted one by one, their ends would drift.
  const TimeRange second{k_pal.frames(7), k_pal.frames(7)};
  const TimeRange converted = second.rescaled_to(k_ntsc.per_second());
  EXPECT_EQ(converted.start.value(), 8);              // 8.39
  EXPECT_EQ(converted.end().value(), 17);             // 16.78
  EXPECT_EQ(converted.duration.value(), 9);
  EXPECT_EQ(k_pal.frames(25), k_film.frames(24));     // one second, whatever the scale
  EXPECT_NE(k_ntsc.frames(30), k_film.frames(30));    // 29.97 is not 30
}

TEST(RationalTime, SumsAcrossScalesAreExact) {
  // 1001/24000 s + 1001/30000 s = 9009/120000 s: neither frame grid holds it.
  const RationalTime sum = RationalTime(1001, TimeScale(24000, 1)) +
                           RationalTime(1001, TimeScale(30000, 1));
  EXPECT_EQ(sum.scale(), TimeScale(120000, 1));
  EXPECT_EQ(sum.value(), 9009);
  EXPECT_EQ(sum - RationalTime(1001, TimeScale(30000, 1)), k_24p.frames(1));
  EXPECT_GT(k_ntsc.frames(30), k_film.frames(24));  // 1.001 s
  EXPECT_GT(RationalTime(3600, TimeScale(1, 1)), k_ntsc.frames(107892));  // 3599.996 s
}

TEST(FrameRate, ReadsTheNtscFlagStrictlyOrLoosely) {
  EXPECT_EQ(FrameRate::read_ntsc("TRUE", false), true);
  EXPECT_EQ(FrameRate::read_ntsc("True", false), std::nullopt);
  EXPECT_EQ(FrameRate::read_ntsc(" true\n", true), true);
  EXPECT_EQ(FrameRate::read_ntsc("False", true), false);
  EXPECT_EQ(FrameRate::read_ntsc("yes", true), std::nullopt);
  EXPECT_TRUE(k_ntsc.drop_frame());
  EXPECT_FALSE(k_24p.drop_frame());
}

}  // namespace
}  // namespace quillory
