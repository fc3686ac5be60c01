#pragma once
// The working state kept between opening a source document and creating titles.

#include <string>
#include <vector>

#include "source/clip_record.h"

namespace quillory {

struct ControllerFields {
  std::vector<TitleTemplate> templates_array;  // first is always the built-in "Default"
  std::vector<ClipRecord> clips_array;
  std::vector<std::string> frame_rates;  // distinct rate names, in order of first appearance
  std::vector<std::string> displayformats;
  std::vector<std::string> frame_sizes;
  std::vector<std::string> pixelaspectratios;
  std::vector<std::string> anamorphics;
  // The output sequence's rate, set by the host.
  std::string ntsc = "TRUE";
  int timebase = 30;
};

}  // namespace quillory
