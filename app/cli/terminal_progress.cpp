#include "terminal_progress.h"

namespace quillory::cli {

void ProgressLine::draw(const std::string& text) {
  last_drawn_ = std::chrono::steady_clock::now();
  const auto tenths =
      std::chrono::duration_cast<std::chrono::milliseconds>(last_drawn_ - start_).count() / 100;
  display_ << "\rquillory: " << text << ", " << tenths / 10 << "." << tenths % 10 << " s\x1b[K"
           << std::flush;
  drawn_ = true;
}

void ProgressLine::wipe() {
  if (!drawn_) return;
  display_ << "\r\x1b[K" << std::flush;
  drawn_ = false;
}

TerminalProgress::TerminalProgress(LineSink& lines, std::ostream& display, bool shown,
                                   bool lines_shown)
    : lines_(lines), line_(display), shown_(shown), lines_shown_(lines_shown) {}

void TerminalProgress::line(std::string_view text) {
  if (lines_shown_) line_.wipe();
  lines_.line(text);
}

void TerminalProgress::progress(std::string_view stage, std::size_t done, std::size_t total) {
  if (!shown_ || total <= kShownFrom || (done < total && !line_.due())) return;
  line_.draw(std::string(stage) + " " + std::to_string(done) + "/" + std::to_string(total) +
             " clips");
}

}  // namespace quillory::cli
