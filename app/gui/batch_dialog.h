#pragma once
// Create Titles for Several Exports: the exports and an output folder are picked, the
// window's settings applied to each (its sequence named after the export), and the list shows
// what became of each one: the file written, or why not. The exports are worked on in threads
// while the dialog stays live; each result shows as it comes.

#include <QDialog>
#include <QStringList>
#include <thread>
#include <vector>

#include "form/batch.h"
#include "form/form.h"
#include "startup/startup.h"

class QLabel;
class QPushButton;
class QTreeWidget;

namespace quillory::gui {

class BatchDialog : public QDialog {
  Q_OBJECT

 public:
  // `form`: the window's settings; `folder`: where the pickers start.
  BatchDialog(Form form, OutputPaths paths, QString folder, QWidget* parent = nullptr);
  ~BatchDialog() override;  // waits for a run under way

  void addSources(const QStringList& paths);
  void setOutputFolder(const QString& folder);
  // Starts creating titles for every source listed; false when it cannot, the reason shown.
  bool start();
  bool isRunning() const { return worker_.joinable(); }
  // The result column of each source, in the list's order.
  QStringList results() const;

 Q_SIGNALS:
  void runFinished();

 protected:
  // The dialog cannot close while its threads write.
  void reject() override;

 private:
  void chooseSources();
  void chooseFolder();
  void showResult(std::size_t index, const BatchResult& result);
  void endRun();
  void updateButtons();

  const Form form_;
  const OutputPaths paths_;
  QString start_folder_;
  QString output_folder_;
  QStringList sources_;
  std::vector<BatchEntry> entries_;  // of the last run
  std::size_t written_ = 0;

  QTreeWidget* list_;
  QLabel* folder_label_;
  QLabel* status_;
  QPushButton* add_button_;
  QPushButton* folder_button_;
  QPushButton* create_button_;
  QPushButton* close_button_;
  std::thread worker_;
};

}  // namespace quillory::gui
