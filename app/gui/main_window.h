#pragma once
// The Quillory window: the form that the core reads, the file display that it updates, and the
// two actions, opening a source document and creating titles, each calling one operation.
// Operations run on this thread; while one runs, the form is locked and events are let through
// as its output lines arrive, so the window repaints and shows progress.

#include <QElapsedTimer>
#include <QMainWindow>
#include <array>
#include <memory>
#include <optional>
#include <string_view>

#include "xml/line_sink.h"
#include "qt_controls.h"
#include "form/controller.h"
#include "startup/startup.h"

class QAction;
class QLabel;
class QProgressBar;
class QPushButton;
class QWidget;

namespace quillory::gui {

class LogPane;
class TitlePreview;

class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(OutputPaths paths, QWidget* parent = nullptr);
  ~MainWindow() override;

  // Opens a source document as the Open button does once a path is chosen. True when the
  // document was accepted and read without error.
  bool openDocument(const QString& path);
  // Creates titles as the Create Titles button does. True when the file was written.
  bool createTitles();
  // Copies the last run's file to `target`, replacing what is there. True when copied.
  bool saveOutputCopyTo(const QString& target);
  // Where runs write; empty when no data folder is known.
  QString outputPath() const;
  bool isBusy() const { return busy_; }
  void saveSettings() const;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  class BusyScope;

  void buildWidgets();
  void buildMenus();
  void setTabOrder();
  void restoreSettings();
  void chooseDocument();
  void revealOutput();
  void saveOutputCopy();
  void refreshAfterOpen(const QString& path);
  void fillRateMenu();
  void applyRate();
  void refreshPreview();
  void updateActions();
  void showError(const QString& summary, const QString& message);
  void writeLine(std::string_view text);
  void letEventsThrough();

  CallbackSink sink_;
  OutputPaths paths_;

  QtFormWidgets controls_;  // the widgets behind the form's named controls
  QComboBox* rate_menu_ = nullptr;
  QPushButton* open_button_ = nullptr;
  QPushButton* create_button_ = nullptr;
  QWidget* output_row_ = nullptr;
  QLabel* output_label_ = nullptr;
  QPushButton* reveal_button_ = nullptr;
  QPushButton* save_copy_button_ = nullptr;
  TitlePreview* preview_ = nullptr;
  LogPane* log_ = nullptr;
  QProgressBar* progress_ = nullptr;
  QAction* open_action_ = nullptr;
  QAction* create_action_ = nullptr;

  // Declared in this order so that the controller goes before the adapters it refers to.
  std::unique_ptr<QtForm> form_;
  std::unique_ptr<Controller> controller_;

  QString last_folder_;
  bool busy_ = false;
  long long lines_expected_ = 0;
  long long lines_seen_ = 0;
  QElapsedTimer since_events_;
};

}  // namespace quillory::gui
