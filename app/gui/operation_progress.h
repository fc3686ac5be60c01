#pragma once
// Carries the core's output lines while an operation runs on the window's thread: to standard
// output, to the log pane, and to the progress bar, letting events through now and then so
// that the window repaints and shows progress.

#include <QElapsedTimer>

#include "xml/line_sink.h"

class QProgressBar;

namespace quillory::gui {

class LogPane;

class OperationProgress : public LineSink {
 public:
  OperationProgress(LogPane& log, QProgressBar& bar) : log_(log), bar_(bar) {}

  // `expected_lines` fills the bar; 0 shows it busy without a measure.
  void start(long long expected_lines);
  void finish();
  void line(std::string_view text) override;

 private:
  LogPane& log_;
  QProgressBar& bar_;
  bool running_ = false;
  long long expected_ = 0;
  long long seen_ = 0;
  QElapsedTimer since_events_;
};

}  // namespace quillory::gui
