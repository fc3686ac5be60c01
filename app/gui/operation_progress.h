#pragma once
// Carries the core's output lines while an operation runs on the window's thread: to standard
// output and to the log pane, and its progress to the progress bar, letting events through
// now and then so that the window repaints and shows progress.

#include <QElapsedTimer>

#include "xml/line_sink.h"

class QProgressBar;

namespace quillory::gui {

class LogPane;

class OperationProgress : public LineSink {
 public:
  OperationProgress(LogPane& log, QProgressBar& bar) : log_(log), bar_(bar) {}

  // The bar shows busy without a measure until the core reports progress.
  void start();
  void finish();
  void line(std::string_view text) override;
  // Placing and then writing each fill half of the bar.
  void progress(std::string_view stage, std::size_t done, std::size_t total) override;

 private:
  LogPane& log_;
  QProgressBar& bar_;
  // Lets events through when it is time; true when it did.
  bool let_events_through();

  bool running_ = false;
  QElapsedTimer since_events_;
};

}  // namespace quillory::gui
