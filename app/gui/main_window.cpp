#include "main_window.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QEventLoop>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFutureWatcher>
#include <QtConcurrent/QtConcurrentRun>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include "busy_scope.h"
#include "document_bar.h"
#include "form_panel.h"
#include "form_settings.h"
#include "log_pane.h"
#include "operation_progress.h"
#include "output_bar.h"
#include "title_preview.h"
#include "source/incomplete_input.h"

namespace quillory::gui {
namespace {

std::string local_path(const QString& path) { return QFile::encodeName(path).toStdString(); }
QString shown_path(const std::string& path) { return QFile::decodeName(QByteArray::fromStdString(path)); }

// A single local .xml or .fcpxml file, or an FCPXML bundle (a .fcpxmld folder): what the
// window takes by drag and drop.
QString dropped_document(const QMimeData* mime) {
  if (mime == nullptr || !mime->hasUrls() || mime->urls().size() != 1) return {};
  const QUrl url = mime->urls().constFirst();
  if (!url.isLocalFile()) return {};
  const QString path = url.toLocalFile();
  const QFileInfo file(path);
  const auto is = [&file](const char* suffix) {
    return file.suffix().compare(QLatin1String(suffix), Qt::CaseInsensitive) == 0;
  };
  return is("xml") || is("fcpxml") || (is("fcpxmld") && file.isDir()) ? path : QString();
}

}  // namespace

MainWindow::MainWindow(OutputPaths paths, QWidget* parent)
    : QMainWindow(parent), controller_(std::move(paths)) {
  setWindowTitle(tr("Quillory"));
  setAcceptDrops(true);
  buildWidgets();
  buildMenus();
  restoreSettings();
  setTabOrder();
  // While an operation runs, the form is locked: none of its controls can change.
  connect(form_, &FormPanel::linesChanged, preview_, &TitlePreview::refresh);
  connect(preview_, &TitlePreview::fitChanged, this, [this](const QString& message) {
    if (!message.isEmpty()) statusBar()->showMessage(message);
  });
  connect(preview_, &TitlePreview::clipsChecked, this, [this](const QStringList& unfit) {
    std::vector<std::string> lines;
    for (const auto& clip : unfit) lines.push_back(tr("outside title-safe: %1").arg(clip).toStdString());
    log_->showWarnings(lines);
    statusBar()->showMessage(unfit.isEmpty() ? tr("Every title fits inside the title-safe area.")
                                             : tr("%n clip(s) have lines outside the title-safe area.", "", unfit.size()));
  });
  connect(document_->openButton(), &QPushButton::clicked, this, &MainWindow::chooseDocument);
  connect(create_button_, &QPushButton::clicked, this, &MainWindow::createTitles);
  // How a document is read changes what it gives: read the open one again.
  const auto read_again = [this] {
    const std::string& open = controller_.document_path();
    if (!open.empty()) openDocument(shown_path(open));
  };
  connect(document_->tolerantBox(), &QCheckBox::toggled, this, read_again);
  connect(form_->sourceMenu(), &QComboBox::currentIndexChanged, this, read_again);
  updateActions();
  statusBar()->showMessage(tr("Open a Final Cut Pro XML export, or drop one on this window."));
}

MainWindow::~MainWindow() = default;

// The window stays drawn and answers (Cancel, above all) while the work runs; its form is locked
// until the work is done.
template <typename Work>
auto MainWindow::offThread(const QString& message, Work work) {
  const BusyScope busy(*centralWidget(), *statusBar(), *progress_,
                       [this](bool busy) { busy_ = busy, updateActions(); }, message);
  QFutureWatcher<decltype(work())> watcher;
  QEventLoop until_done;
  connect(&watcher, &QFutureWatcherBase::finished, &until_done, &QEventLoop::quit);
  watcher.setFuture(QtConcurrent::run(std::move(work)));
  until_done.exec();
  return watcher.result();
}

void MainWindow::restoreSettings() {
  const FormSettings values = load_form_settings(QSettings());
  form_->restore(values);
  document_->tolerantBox()->setChecked(values.tolerant);
  last_folder_ = values.last_folder;
  preview_->setMediaFolder(values.media_folder);
  if (values.geometry.isEmpty() || !restoreGeometry(values.geometry)) resize(sizeHint());
}

void MainWindow::saveSettings() const {
  FormSettings values;
  form_->store(values);
  values.tolerant = document_->tolerant();
  values.last_folder = last_folder_;
  values.media_folder = preview_->mediaFolder();
  values.geometry = saveGeometry();
  QSettings settings;
  save_form_settings(settings, values);
}

QString MainWindow::outputPath() const {
  const auto& path = controller_.default_output();
  return path ? QString::fromStdString(*path) : QString();
}

void MainWindow::chooseDocument() {
  const QString path =
      QFileDialog::getOpenFileName(this, tr("Open Final Cut Pro XML"), last_folder_,
                                   tr("Final Cut Pro XML and FCPXML (*.xml *.fcpxml);;"
                                      "FCPXML bundle (Info.fcpxml);;All files (*)"));
  if (!path.isEmpty()) openDocument(path);
}

bool MainWindow::openDocument(const QString& path) {
  if (busy_) return false;
  const QString name = QFileInfo(path).fileName();
  const std::string file = local_path(path);
  Form values = form();
  // A sequence chosen in one document means nothing in another.
  if (file != controller_.document_path()) values.sourcePopup.reset();
  // The window keeps showing the open document until the controller holds another: an open
  // that fails leaves both as they were.
  const OpenOutcome opened = offThread(tr("Opening %1…").arg(name), [this, file, values] {
    return controller_.get_info_from_clips(file, values, *progress_);
  });
  const QString error = QString::fromStdString(opened.error);
  if (opened.status != OpenStatus::Opened && opened.status != OpenStatus::Broken) {
    form_->showSource(controller_);  // a read again for another source may have failed
  }
  switch (opened.status) {
    case OpenStatus::Unreadable:
      statusBar()->showMessage(tr("Could not open %1.").arg(name));
      show_error(this, tr("Could not open %1.").arg(name), error);
      return false;
    case OpenStatus::NoSequence:  // the menu offers only the document's own
    case OpenStatus::NotXmeml:
      statusBar()->showMessage(tr("%1 is not an xmeml document; nothing changed.").arg(name));
      show_error(this, tr("%1 is not a Final Cut Pro XML document.").arg(name),
                 opened.incomplete
                     ? tr("Its first node is not <xmeml>: %1. The window still shows the "
                          "previous document.").arg(error) + document_->tolerantHint()
                     : error.isEmpty()
                         ? tr("Its first element is not <xmeml>. The window still shows the previous "
                              "document.")
                         : tr("%1. The window still shows the previous document.").arg(error));
      return false;
    case OpenStatus::Broken:
      // The display and the menus show what was read, but no titles are made from half a
      // document.
      showDocument(path);
      statusBar()->showMessage(tr("Could not read all of %1; open it again once mended.").arg(name));
      show_error(this, tr("Could not read all of %1. No titles can be created from it.").arg(name),
                 error + (opened.incomplete ? document_->tolerantHint() : QString()));
      return false;
    case OpenStatus::Opened:
      break;
  }
  showDocument(path);
  const auto& source = controller_.source();
  // A document without master clips most often holds an edit.
  const bool edit_only = source.clips.empty() && !source.sequences.empty() && !controller_.titles_over_sequence();
  showReport(controller_.opening_report(),
             tr("Opened %1: %2 clips, %3 templates.").arg(name).arg(source.clips.size()).arg(source.templates.size()) +
                 (edit_only ? tr(" It holds no master clip: choose one of its sequences under Source:.") : QString()));
  return true;
}

void MainWindow::showDocument(const QString& path) {
  output_->hide();  // the file written holds the previous document's titles
  document_->showDocument(controller_.display());
  form_->showDocument(controller_);
  last_folder_ = QFileInfo(path).absolutePath();
  preview_->setClips(&controller_.source().clips, controller_.source().sequence_rate);
  updateActions();
}

Form MainWindow::form() const {
  Form values = form_->form();
  values.tolerantCheckbox = document_->tolerant() ? kCheckboxOn : 0;
  return values;
}

bool MainWindow::createTitles() {
  if (busy_ || !controller_.can_create()) return false;
  struct Outcome {
    AssumptionReport report;
    QString error;
    bool cancelled = false;
  };
  cancel_button_->show();
  const Outcome done = offThread(tr("Creating titles…"), [this, values = form(),
                                                         hint = document_->tolerantHint(),
                                                         source = controller_.document_path()] {
    Outcome outcome;
    try {
      outcome.report = controller_.create_fcp_xml(values, *progress_);
    } catch (const Cancelled&) {
      outcome.cancelled = true;
    } catch (const IncompleteInput& failure) {
      outcome.error = QString::fromStdString(failure.what()) + hint;
    } catch (const std::exception& failure) {
      outcome.error = QString::fromStdString(failure_message(failure, source));
    }
    return outcome;
  });
  cancel_button_->hide();
  const QString& error = done.error;
  if (done.cancelled) {
    statusBar()->showMessage(tr("Cancelled: no titles were written; the previous file is unchanged."));
    return false;
  }
  if (!error.isEmpty()) {
    statusBar()->showMessage(tr("No titles were written; the previous file is unchanged."));
    show_error(this, tr("Could not create titles. The previous file is unchanged."), error);
    return false;
  }
  output_->showWritten(outputPath());
  showReport(done.report, tr("Wrote %1 titles to %2.")
                         .arg(controller_.source().clips.size())
                         .arg(outputPath()));
  return true;
}

// The warnings go to the log pane, the summary to the status line.
void MainWindow::showReport(const AssumptionReport& report, const QString& status) {
  log_->showWarnings(report.warnings);
  QString summary = QString::fromStdString(report.summary).remove(QStringLiteral("quillory: "));
  // Warnings that need no assumption (a damaged document, a borrowed file) have no summary.
  if (summary.isEmpty() && !report.warnings.empty()) {
    const auto count = report.warnings.size();
    summary = count == 1 ? tr("1 warning: see the log.") : tr("%1 warnings: see the log.").arg(count);
  }
  statusBar()->showMessage(summary.isEmpty() ? status : status + QLatin1Char(' ') + summary);
}

QString MainWindow::suggestedCopy() const {
  const QString folder = QFileInfo(shown_path(controller_.document_path())).absolutePath();
  return shown_path(controller_.copy_path(local_path(folder), form_->form()));
}

QString MainWindow::copyRefusal(const QString& target) const {
  try {
    controller_.refuse_copy_target(local_path(target));
  } catch (const std::exception& refusal) {
    return QString::fromStdString(refusal.what());
  }
  return {};
}

bool MainWindow::saveOutputCopyTo(const QString& target) {
  if (!output_->saveCopyTo(target)) return false;
  statusBar()->showMessage(tr("Saved a copy to %1.").arg(target));
  return true;
}

void MainWindow::updateActions() {
  create_button_->setEnabled(controller_.can_create() && !busy_);
  create_action_->setEnabled(controller_.can_create() && !busy_);
  open_action_->setEnabled(!busy_);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  // An operation holds the form; closing under it would pull the controls away.
  if (busy_) return event->ignore();
  saveSettings();
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (!busy_ && !dropped_document(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  const QString path = dropped_document(event->mimeData());
  if (busy_ || path.isEmpty()) return;
  event->acceptProposedAction();
  openDocument(path);
}

}  // namespace quillory::gui
