#pragma once
// Where the last run's file went: its path, a button that shows its folder, and one that saves
// a copy elsewhere. Hidden until a run has written the file.

#include <QString>
#include <QWidget>
#include <functional>

class QLabel;
class QPushButton;

namespace quillory::gui {

// A window-modal warning that does not block: the window stays drawn and nothing waits on it.
void show_error(QWidget* parent, const QString& summary, const QString& message);

class OutputBar : public QWidget {
  Q_OBJECT

 public:
  // `suggested_copy` gives the path the save dialog proposes; `refusal`, why a copy may not go
  // to a path (empty when it may).
  OutputBar(QString output_path, std::function<QString()> suggested_copy,
            std::function<QString(const QString&)> refusal, QWidget* parent = nullptr);

  // Shows that the titles were written to `path`.
  void showWritten(const QString& path);
  // Copies the output to `target`, replacing what is there only once the copy is complete;
  // false, copying nothing, while the bar is hidden or when `target` is refused.
  bool saveCopyTo(const QString& target);

  QPushButton* revealButton() const { return reveal_; }
  QPushButton* saveCopyButton() const { return save_copy_; }

 private:
  void saveCopy();

  QString output_path_;
  std::function<QString()> suggested_copy_;
  std::function<QString(const QString&)> refusal_;
  QLabel* label_;
  QPushButton* reveal_;
  QPushButton* save_copy_;
};

}  // namespace quillory::gui
