#include "operation_progress.h"

#include <QCoreApplication>
#include <QProgressBar>
#include <climits>
#include <iostream>

#include "log_pane.h"

namespace quillory::gui {
namespace {
// How long an operation may keep the window from repainting.
constexpr int kEventIntervalMs = 50;
}  // namespace

void OperationProgress::start() {
  running_ = true;
  bar_.setRange(0, 0);
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
  let_events_through();
}

void OperationProgress::progress(std::string_view stage, std::size_t done, std::size_t total) {
  if (!running_ || total == 0 || total > static_cast<std::size_t>(INT_MAX / 2)) return;
  const int whole = static_cast<int>(total);
  bar_.setRange(0, 2 * whole);
  bar_.setValue((stage == "writing" ? whole : 0) + static_cast<int>(done));
  let_events_through();
}

bool OperationProgress::let_events_through() {
  if (!running_ || since_events_.elapsed() < kEventIntervalMs) return false;
  log_.flush();
  QCoreApplication::processEvents();
  since_events_.restart();
  return true;
}

}  // namespace quillory::gui
