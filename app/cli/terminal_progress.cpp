#include "terminal_progress.h"

namespace quillory::cli {
namespace {
// Redrawing more often than this only costs time.
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
}  // namespace

TerminalProgress::TerminalProgress(LineSink& lines, std::ostream& display, bool shown,
                                   bool lines_shown)
    : lines_(lines), display_(display), shown_(shown), lines_shown_(lines_shown) {}

TerminalProgress::~TerminalProgress() { wipe(); }

void TerminalProgress::line(std::string_view text) {
  if (lines_shown_) wipe();
  lines_.line(text);
}

void TerminalProgress::progress(std::string_view stage, std::size_t done, std::size_t total) {
  if (!shown_ || total <= kShownFrom) return;
  const auto now = std::chrono::steady_clock::now();
  if (done < total && now - last_drawn_ < kRedrawInterval) return;
  last_drawn_ = now;
  const auto tenths =
      std::chrono::duration_cast<std::chrono::milliseconds>(now - start_).count() / 100;
  display_ << "\rquillory: " << stage << " " << done << "/" << total << " clips, " << tenths / 10
           << "." << tenths % 10 << " s\x1b[K" << std::flush;
  drawn_ = true;
}

void TerminalProgress::wipe() {
  if (!drawn_) return;
  display_ << "\r\x1b[K" << std::flush;
  drawn_ = false;
}

}  // namespace quillory::cli
