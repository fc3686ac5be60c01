#include "operation_progress.h"

#include <QMutexLocker>
#include <QProgressBar>
#include <climits>
#include <iostream>

#include "log_pane.h"

namespace quillory::gui {
namespace {
// How often the window shows what the run has done.
constexpr int kShowIntervalMs = 50;
}  // namespace

OperationProgress::OperationProgress(LogPane& log, QProgressBar& bar, QObject* parent)
    : QObject(parent), log_(log), bar_(bar) {
  timer_.setInterval(kShowIntervalMs);
  connect(&timer_, &QTimer::timeout, this, &OperationProgress::show);
}

void OperationProgress::start() {
  cancelled_ = false;
  value_ = 0;
  maximum_ = 0;
  bar_.setRange(0, 0);
  bar_.show();
  timer_.start();
}

void OperationProgress::finish() {
  timer_.stop();
  show();
  bar_.hide();
}

void OperationProgress::line(std::string_view text) {
  std::cout << text << '\n' << std::flush;
  const QMutexLocker lock(&mutex_);
  pending_ << QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

void OperationProgress::progress(std::string_view stage, std::size_t done, std::size_t total) {
  if (cancelled_) throw Cancelled();
  if (total == 0 || total > static_cast<std::size_t>(INT_MAX / 2)) return;
  const int whole = static_cast<int>(total);
  maximum_ = 2 * whole;
  value_ = (stage == "writing" ? whole : 0) + static_cast<int>(done);
}

void OperationProgress::show() {
  QStringList lines;
  {
    const QMutexLocker lock(&mutex_);
    lines.swap(pending_);
  }
  for (const auto& line : lines) log_.append(line);
  log_.flush();
  if (maximum_ > 0) {
    bar_.setRange(0, maximum_);
    bar_.setValue(value_);
  }
}

}  // namespace quillory::gui
