#pragma once
// Carries the core's output lines and progress from the worker thread that runs an operation
// to the window: each line goes to standard output at once and to the log pane in batches,
// and the progress bar follows the clips, both drawn by a timer on the window's thread. Cancel
// stops a run at its next clip.

#include <QMutex>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <atomic>
#include <stdexcept>

#include "source/line_sink.h"

class QProgressBar;

namespace quillory::gui {

class LogPane;

// What a run asked to stop throws from the core's progress report, between two clips.
class Cancelled : public std::runtime_error {
 public:
  Cancelled() : std::runtime_error("quillory: cancelled") {}
};

class OperationProgress : public QObject, public LineSink {
  Q_OBJECT

 public:
  OperationProgress(LogPane& log, QProgressBar& bar, QObject* parent = nullptr);

  // On the window's thread, around a run: the bar shows busy without a measure until the
  // core reports progress.
  void start();
  void finish();
  // From any thread: the run stops at its next clip.
  void cancel() { cancelled_ = true; }

  // From the worker thread.
  void line(std::string_view text) override;
  // Placing and then writing each fill half of the bar.
  void progress(std::string_view stage, std::size_t done, std::size_t total) override;

 private:
  void show();

  LogPane& log_;
  QProgressBar& bar_;
  QTimer timer_;
  QMutex mutex_;
  QStringList pending_;  // lines not yet in the log pane
  std::atomic<int> value_{0};
  std::atomic<int> maximum_{0};
  std::atomic<bool> cancelled_{false};
};

}  // namespace quillory::gui
