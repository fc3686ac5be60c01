#pragma once
// Progress on standard error when that is a terminal: one line, redrawn in place and wiped
// when done, e.g. "quillory: writing 52000/100000 clips, 9.1 s".

#include <chrono>
#include <ostream>
#include <string>

#include "source/line_sink.h"

namespace quillory::cli {

// The line itself, as a run on its own and a batch draw it.
class ProgressLine {
 public:
  explicit ProgressLine(std::ostream& display) : display_(display) {}

  // Whether a redraw is due: drawing more often than every tenth of a second only costs time.
  bool due() const { return std::chrono::steady_clock::now() - last_drawn_ >= kRedrawInterval; }
  // Draws "quillory: TEXT, S s", S the seconds since the line was made.
  void draw(const std::string& text);
  void wipe();

 private:
  static constexpr auto kRedrawInterval = std::chrono::milliseconds(100);

  std::ostream& display_;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point last_drawn_;
};

// A run on its own: the line counts the clips of its stage.
class TerminalProgress : public LineSink {
 public:
  // Lines go on to `lines`; the display goes to `display` when `shown` and a run has more
  // than `kShownFrom` clips. `lines_shown`: the lines appear on the same terminal, so the
  // display steps aside for each.
  TerminalProgress(LineSink& lines, std::ostream& display, bool shown, bool lines_shown);
  ~TerminalProgress() override { line_.wipe(); }

  void line(std::string_view text) override;
  void progress(std::string_view stage, std::size_t done, std::size_t total) override;

  static constexpr std::size_t kShownFrom = 5000;

 private:
  LineSink& lines_;
  ProgressLine line_;
  bool shown_;
  bool lines_shown_;
};

}  // namespace quillory::cli
