#pragma once
// Locks a window's form for one operation and gives it back afterwards, whatever way the
// operation ends. The window's events still flow while the operation runs on its worker
// thread, so input must not reach the form meanwhile.

#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>

class QStatusBar;

namespace quillory::gui {

class OperationProgress;

class BusyScope {
 public:
  // `set_busy` hears true now and false at the end, for the window to update its actions.
  BusyScope(QWidget& form, QStatusBar& status, OperationProgress& progress,
            std::function<void(bool)> set_busy, const QString& message);
  ~BusyScope();
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

 private:
  QWidget& form_;
  OperationProgress& progress_;
  std::function<void(bool)> set_busy_;
  QPointer<QWidget> focus_;
};

}  // namespace quillory::gui
