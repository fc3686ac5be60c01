#include "media/colour_clip.h"

#include <cstdlib>

namespace quillory::test {
namespace {

std::string quoted(const std::string& text) {
  std::string result = "'";
  for (char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}

}  // namespace

bool make_colour_clip(const std::string& path) {
  std::string command = "ffmpeg -nostdin -v error -y";
  std::string inputs;
  for (std::size_t i = 0; i < kColourRuns.size(); ++i) {
    command += " -f lavfi -i color=c=" + std::string(kColourRuns[i].name) + ":s=64x36:r=25:d=" +
               std::to_string(kColourRunFrames / 25.0);
    inputs += "[" + std::to_string(i) + "]";
  }
  // Key frames every 12 frames: frames between them decode only from the key frame before.
  command += " -filter_complex " + inputs + "concat=n=" + std::to_string(kColourRuns.size()) +
             ":v=1:a=0 -c:v mpeg4 -q:v 2 -g 12 -pix_fmt yuv420p " + quoted(path);
  return std::system(command.c_str()) == 0;
}

}  // namespace quillory::test
