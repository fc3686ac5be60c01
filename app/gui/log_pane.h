#pragma once
// The collapsible pane that repeats the core's output lines. Lines are collected and shown in
// batches, because a large document writes a hundred thousand of them.

#include <QStringList>
#include <QWidget>
#include <string>
#include <vector>

class QPlainTextEdit;
class QToolButton;

namespace quillory::gui {

class LogPane : public QWidget {
  Q_OBJECT

 public:
  explicit LogPane(QWidget* parent = nullptr);

  void append(const QString& line);
  // Shows the lines collected since the last flush.
  void flush();
  // Shows warnings at once, opening the pane so that they are seen; none: nothing changes.
  void showWarnings(const std::vector<std::string>& warnings);

  bool isExpanded() const;
  void setExpanded(bool expanded);
  QString text() const;
  QToolButton* toggleButton() const { return toggle_; }

 private:
  QToolButton* toggle_;
  QPlainTextEdit* view_;
  QStringList pending_;
};

}  // namespace quillory::gui
