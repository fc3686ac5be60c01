#include "busy_scope.h"

#include <QApplication>
#include <QStatusBar>

#include "operation_progress.h"

namespace quillory::gui {

BusyScope::BusyScope(QWidget& form, QStatusBar& status, OperationProgress& progress,
                     std::function<void(bool)> set_busy, const QString& message)
    : form_(form), progress_(progress), set_busy_(std::move(set_busy)),
      focus_(QApplication::focusWidget()) {
  form_.setEnabled(false);
  set_busy_(true);
  QApplication::setOverrideCursor(Qt::BusyCursor);
  status.showMessage(message);
  progress_.start();
}

BusyScope::~BusyScope() {
  progress_.finish();
  QApplication::restoreOverrideCursor();
  form_.setEnabled(true);
  set_busy_(false);
  if (focus_ && focus_->isEnabled()) focus_->setFocus();
}

}  // namespace quillory::gui
