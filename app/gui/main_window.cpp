#include "main_window.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
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

#include "batch_dialog.h"
#include "busy_scope.h"
#include "document_bar.h"
#include "form_panel.h"
#include "form_settings.h"
#include "log_pane.h"
#include "operation_progress.h"
#include "output_bar.h"
#include "title_preview.h"
#include "xml/failure.h"

namespace quillory::gui {
namespace {

std::string local_path(const QString& path) { return QFile::encodeName(path).toStdString(); }

// A single local .xml file, the only thing the window takes by drag and drop.
QString dropped_document(const QMimeData* mime) {
  if (mime == nullptr || !mime->hasUrls() || mime->urls().size() != 1) return {};
  const QUrl url = mime->urls().constFirst();
  if (!url.isLocalFile()) return {};
  const QString path = url.toLocalFile();
  return QFileInfo(path).suffix().compare(QLatin1String("xml"), Qt::CaseInsensitive) == 0
             ? path
             : QString();
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
  connect(form_, &FormPanel::linesChanged, this, [this] {
    if (!busy_) preview_->refresh();
  });
  connect(document_->openButton(), &QPushButton::clicked, this, &MainWindow::chooseDocument);
  connect(create_button_, &QPushButton::clicked, this, &MainWindow::createTitles);
  // How a document is read changes what it gives: read the open one again.
  connect(document_->tolerantBox(), &QCheckBox::toggled, this, [this] {
    if (!busy_ && !source_path_.isEmpty()) openDocument(source_path_);
  });
  updateActions();
  statusBar()->showMessage(tr("Open a Final Cut Pro XML export, or drop one on this window."));
}

MainWindow::~MainWindow() = default;

void MainWindow::buildWidgets() {
  auto* central = new QWidget(this);
  setCentralWidget(central);

  document_ = new DocumentBar(central);
  form_ = new FormPanel(central);
  auto* preview_box = new QGroupBox(tr("Preview"), central);
  preview_ = new TitlePreview([this] { return controller_.title_settings(form()).lines; },
                              preview_box);
  (new QVBoxLayout(preview_box))->addWidget(preview_);
  auto* columns = new QHBoxLayout;
  columns->addWidget(form_, 3);
  columns->addWidget(preview_box, 2);

  // The run and where its file went.
  create_button_ = new QPushButton(tr("&Create Titles"), central);
  create_button_->setObjectName(QStringLiteral("createButton"));
  create_button_->setToolTip(tr("Write the title sequence (Ctrl+Return)"));
  create_button_->setDefault(true);
  output_ = new OutputBar(outputPath(), [this] { return suggestedCopy(); }, central);
  auto* run_row = new QHBoxLayout;
  run_row->addWidget(create_button_);
  run_row->addWidget(output_, 1);

  log_ = new LogPane(central);
  log_->setObjectName(QStringLiteral("logPane"));

  auto* layout = new QVBoxLayout(central);
  layout->addWidget(document_);
  layout->addLayout(columns, 1);
  layout->addLayout(run_row);
  layout->addWidget(log_);

  auto* bar = new QProgressBar(this);
  bar->setObjectName(QStringLiteral("progress"));
  bar->setMaximumWidth(fontMetrics().averageCharWidth() * 30);
  bar->hide();
  statusBar()->addPermanentWidget(bar);
  progress_ = std::make_unique<OperationProgress>(*log_, *bar);
}

void MainWindow::buildMenus() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  open_action_ = file->addAction(tr("&Open…"), this, &MainWindow::chooseDocument);
  open_action_->setShortcut(QKeySequence::Open);
  create_action_ = file->addAction(tr("&Create Titles"), this, &MainWindow::createTitles);
  create_action_->setShortcuts(
      {QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)});
  file->addAction(tr("Create Titles for &Several Exports…"), this, [this] {
    if (!busy_) BatchDialog(form(), controller_.paths(), last_folder_, this).exec();
  });
  file->addSeparator();
  QAction* quit = file->addAction(tr("&Quit"), this, &QWidget::close);
  quit->setShortcut(QKeySequence::Quit);
}

void MainWindow::setTabOrder() {
  QList<QWidget*> chain{document_->openButton(), document_->tolerantBox()};
  chain << form_->controls() << preview_->clipMenu() << create_button_
        << output_->revealButton() << output_->saveCopyButton() << log_->toggleButton();
  for (qsizetype i = 1; i < chain.size(); ++i) QWidget::setTabOrder(chain[i - 1], chain[i]);
}

void MainWindow::restoreSettings() {
  const FormSettings values = load_form_settings(QSettings());
  form_->restore(values);
  document_->tolerantBox()->setChecked(values.tolerant);
  last_folder_ = values.last_folder;
  if (values.geometry.isEmpty() || !restoreGeometry(values.geometry)) resize(sizeHint());
}

void MainWindow::saveSettings() const {
  FormSettings values;
  form_->store(values);
  values.tolerant = document_->tolerant();
  values.last_folder = last_folder_;
  values.geometry = saveGeometry();
  QSettings settings;
  save_form_settings(settings, values);
}

QString MainWindow::outputPath() const {
  const auto& path = controller_.paths().TEMP_XML_FILE;
  return path ? QString::fromStdString(*path) : QString();
}

void MainWindow::chooseDocument() {
  if (busy_) return;
  const QString path =
      QFileDialog::getOpenFileName(this, tr("Open Final Cut Pro XML"), last_folder_,
                                   tr("Final Cut Pro XML (*.xml);;All files (*)"));
  if (!path.isEmpty()) openDocument(path);
}

bool MainWindow::openDocument(const QString& path) {
  if (busy_) return false;
  const QString name = QFileInfo(path).fileName();
  OpenOutcome opened;
  {
    const BusyScope busy = busyWith(tr("Opening %1…").arg(name));
    opened = controller_.get_info_from_clips(local_path(path), form(), *progress_);
  }
  const QString error = QString::fromStdString(opened.error);
  switch (opened.status) {
    case OpenStatus::Unreadable:
      statusBar()->showMessage(tr("Could not open %1.").arg(name));
      show_error(this, tr("Could not open %1.").arg(name), error);
      return false;
    case OpenStatus::NotXmeml:
      statusBar()->showMessage(tr("%1 is not an xmeml document; nothing changed.").arg(name));
      show_error(this, tr("%1 is not a Final Cut Pro XML document.").arg(name),
                tr("Its first element is not <xmeml>. The window still shows the previous "
                   "document."));
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
  showReport(controller_.opening_report(), tr("Opened %1: %2 clips, %3 templates.")
                                               .arg(name)
                                               .arg(controller_.source().clips.size())
                                               .arg(controller_.source().templates.size()));
  return true;
}

void MainWindow::showDocument(const QString& path) {
  source_path_ = path;
  output_->hide();  // the file written holds the previous document's titles
  document_->showDocument(controller_.display());
  form_->showDocument(controller_);
  last_folder_ = QFileInfo(path).absolutePath();
  preview_->setClips(&controller_.source().clips);
  updateActions();
}

Form MainWindow::form() const {
  Form values = form_->form();
  values.tolerantCheckbox = document_->tolerant() ? kCheckboxOn : 0;
  return values;
}

bool MainWindow::createTitles() {
  if (busy_ || !controller_.can_create()) return false;
  QString error;
  AssumptionReport report;
  {
    const BusyScope busy = busyWith(tr("Creating titles…"));
    try {
      report = controller_.create_fcp_xml(form(), *progress_);
    } catch (const IncompleteInput& failure) {
      error = QString::fromStdString(failure.what()) + document_->tolerantHint();
    } catch (const std::exception& failure) {
      error = QString::fromStdString(failure_message(failure, local_path(source_path_)));
    }
  }
  if (!error.isEmpty()) {
    statusBar()->showMessage(tr("No titles were written; the previous file is unchanged."));
    show_error(this, tr("Could not create titles. The previous file is unchanged."), error);
    return false;
  }
  output_->showWritten();
  showReport(report, tr("Wrote %1 titles to %2.")
                         .arg(controller_.source().clips.size())
                         .arg(outputPath()));
  return true;
}

// The warnings go to the log pane, the summary to the status line.
void MainWindow::showReport(const AssumptionReport& report, const QString& status) {
  log_->showWarnings(report.warnings);
  const QString summary = QString::fromStdString(report.summary).remove(QStringLiteral("quillory: "));
  statusBar()->showMessage(summary.isEmpty() ? status : status + QLatin1Char(' ') + summary);
}

QString MainWindow::suggestedCopy() const {
  const std::string name = form_->form().nameField;
  return QDir(last_folder_)
      .filePath(name.empty() ? QStringLiteral("Titles.xml") : QString::fromStdString(name) + ".xml");
}

bool MainWindow::saveOutputCopyTo(const QString& target) {
  if (!output_->saveCopyTo(target)) return false;
  statusBar()->showMessage(tr("Saved a copy to %1.").arg(target));
  return true;
}

BusyScope MainWindow::busyWith(const QString& message) {
  return BusyScope(*centralWidget(), *statusBar(), *progress_,
                   [this](bool busy) { busy_ = busy, updateActions(); }, message);
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
