#pragma once
// A short clip made with the ffmpeg command: runs of solid colour at 25 frames a second, so
// that the colour of a decoded frame tells which frame it is.

#include <array>
#include <string>

namespace quillory::test {

struct ColourRun {
  const char* name;  // as ffmpeg's color source names it
  int red, green, blue;
};

inline constexpr int kColourRunFrames = 5;
inline constexpr std::array<ColourRun, 4> kColourRuns{{
    {"red", 255, 0, 0}, {"lime", 0, 255, 0}, {"blue", 0, 0, 255}, {"white", 255, 255, 255}}};

// Writes the clip to `path` (a QuickTime movie, 64×36); false when ffmpeg failed.
bool make_colour_clip(const std::string& path);

}  // namespace quillory::test
