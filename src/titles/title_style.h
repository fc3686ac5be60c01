#pragma once
// How a title template's text looks, as its text generator's parameters give it: with the
// frame the titles lie over (titles/video_format.h), what a preview needs to draw a title
// before it is written.

#include <string>
#include <vector>

#include "source/clip_record.h"
#include "titles/video_format.h"

namespace quillory {

struct Colour {
  int red = 0, green = 0, blue = 0, alpha = 255;
};

enum class TextAlignment { Left, Centre, Right };

struct TitleStyle {
  std::string font = "Lucida Grande";  // fontname (or font)
  double size = 20;                    // fontsize, in pixels of the frame
  bool bold = false, italic = false;   // fontstyle 2, 3 or 4
  TextAlignment alignment = TextAlignment::Centre;  // fontalign 1, 2, 3
  Colour colour{204, 204, 204, 255};   // fontcolor
  // origin: the text's place as an offset from the frame's centre, in fractions of the
  // frame's width and height (positive right and down).
  double origin_x = 0, origin_y = 0;
  double leading = 0;  // extra space between lines, in percent of the font size
  // Outline Text: the outline's width in pixels of the frame (0: none) and colour.
  double outline_width = 0;
  Colour outline_colour{0, 0, 0, 255};
};

// The style `title` gives; a parameter it lacks, or cannot be read, keeps the default above.
// An FCPXML title's sizes and place are in pixels of the `frame` it lies over.
TitleStyle read_title_style(const TitleTemplate& title, FrameSize frame = {});

}  // namespace quillory
