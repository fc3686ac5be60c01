#pragma once
// The Quillory window: the document it shows, the form panel, the preview, and the two
// actions, opening a source document and creating titles, each calling the core once.
// Operations run on a worker thread; while one runs, the form is locked and Cancel stops a
// run of Create Titles.

#include <QMainWindow>
#include <memory>

#include "form/controller.h"

class QAction;
class QPushButton;

namespace quillory::gui {

class BusyScope;
class DocumentBar;
class FormPanel;
class LogPane;
class OperationProgress;
class OutputBar;
class TitlePreview;

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(OutputPaths paths, QWidget* parent = nullptr);
  ~MainWindow() override;

  // Opens a source document as the Open button does once a path is chosen. True when the
  // document was read whole.
  bool openDocument(const QString& path);
  // Creates titles as the Create Titles button does. True when the file was written.
  bool createTitles();
  // Copies the last run's file to `target`, replacing what is there only once the copy is
  // complete. True when copied.
  bool saveOutputCopyTo(const QString& target);
  // Where runs write; empty when no data folder is known.
  QString outputPath() const;
  bool isBusy() const { return busy_; }
  // What the form panel and the document bar hold.
  Form form() const;
  void saveSettings() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void buildWidgets();
  void buildMenus();
  void setTabOrder();
  void restoreSettings();
  void chooseDocument();
  void showDocument(const QString& path);
  QString suggestedCopy() const;
  // Why a copy of the titles may not go to `target`; empty when it may.
  QString copyRefusal(const QString& target) const;
  void updateActions();
  // Runs `work` on a worker thread and returns what it returns.
  template <typename Work>
  auto offThread(const QString& message, Work work);
  void showReport(const AssumptionReport& report, const QString& status);
  // Holds what the last open that got past the xmeml check read, and the document's path.
  Controller controller_;

  FormPanel* form_ = nullptr;
  DocumentBar* document_ = nullptr;
  QPushButton* create_button_ = nullptr;
  QPushButton* cancel_button_ = nullptr;  // stops a run of Create Titles at its next clip
  OutputBar* output_ = nullptr;
  TitlePreview* preview_ = nullptr;
  LogPane* log_ = nullptr;
  QAction* open_action_ = nullptr;
  QAction* create_action_ = nullptr;

  QString last_folder_;
  bool busy_ = false;
  // Writes to the log pane and the progress bar, which the window owns.
  std::unique_ptr<OperationProgress> progress_;
};

}  // namespace quillory::gui
