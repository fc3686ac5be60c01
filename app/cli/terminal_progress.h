#pragma once
// A one-line progress display for long runs, on standard error when that is a terminal:
// "quillory: writing 52000/100000 clips, 9 s", redrawn in place and wiped when the run is done.

#include <chrono>
#include <ostream>

#include "source/line_sink.h"

namespace quillory::cli {

class TerminalProgress : public LineSink {
 public:
  // Lines go on to `lines`; the display goes to `display` when `shown` and a run has more
  // than `kShownFrom` clips. `lines_shown`: the lines appear on the same terminal, so the
  // display steps aside for each.
  TerminalProgress(LineSink& lines, std::ostream& display, bool shown, bool lines_shown);
  ~TerminalProgress() override;

  void line(std::string_view text) override;
  void progress(std::string_view stage, std::size_t done, std::size_t total) override;

  static constexpr std::size_t kShownFrom = 5000;

 private:
  void wipe();

  LineSink& lines_;
  std::ostream& display_;
  bool shown_;
  bool lines_shown_;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point last_drawn_;
};

}  // namespace quillory::cli
