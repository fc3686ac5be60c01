#include "operation_progress.h"

#include <QCoreApplication>
#include <QProgressBar>
#include <algorithm>
#include <iostream>

#include "log_pane.h"

namespace quillory::gui {
namespace {
// How long an operation may keep the window from repainting.
constexpr int kEventIntervalMs = 50;
}  // namespace

void OperationProgress::start(long long expected_lines) {
  running_ = true;
  expected_ = expected_lines;
  seen_ = 0;
  bar_.setRange(0, expected_lines > 0 ? static_cast<int>(expected_lines) : 0);
  bar_.setValue(0);
  bar_.show();
  // Loading a document starts with one long parse that lets no events through, so the busy
  // state is drawn now, before the work starts.
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  since_events_.start();
}

void OperationProgress::finish() {
  running_ = false;
  log_.flush();
  bar_.hide();
}

void OperationProgress::line(std::string_view text) {
  std::cout << text << '\n' << std::flush;
  log_.append(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
  ++seen_;
  if (!running_ || since_events_.elapsed() < kEventIntervalMs) return;
  log_.flush();
  if (expected_ > 0) bar_.setValue(static_cast<int>(std::min(seen_, expected_)));
  QCoreApplication::processEvents();
  since_events_.restart();
}

}  // namespace quillory::gui
