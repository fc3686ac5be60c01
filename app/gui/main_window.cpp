#include "main_window.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <iostream>

#include "form_settings.h"
#include "log_pane.h"
#include "qt_controls.h"
#include "source/get_info_from_clips.h"
#include "startup/frame_rates.h"
#include "title_preview.h"
#include "titles/compose_title_text.h"

namespace quillory::gui {
namespace {

// How long an operation may keep the window from repainting.
constexpr int kEventIntervalMs = 50;

std::string local_path(const QString& path) {
  return QFile::encodeName(path).toStdString();
}

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

void select_text(QComboBox* menu, const QString& text) {
  const int index = menu->findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
  if (index >= 0) menu->setCurrentIndex(index);
}

// Refills a menu, keeping the selected title when the new list still has it.
void refill(QComboBox* menu, const QStringList& titles) {
  const QString previous = menu->currentText();
  menu->clear();
  menu->addItems(titles);
  const int index = titles.indexOf(previous);
  menu->setCurrentIndex(index >= 0 ? index : (titles.isEmpty() ? -1 : 0));
}

}  // namespace

// Locks the form for one operation and gives it back afterwards, whatever way the operation
// ends. Events still flow (see letEventsThrough), so input must not reach the form meanwhile.
class MainWindow::BusyScope {
 public:
  BusyScope(MainWindow& window, const QString& message, long long expected_lines)
      : window_(window), focus_(QApplication::focusWidget()) {
    window_.busy_ = true;
    window_.lines_seen_ = 0;
    window_.lines_expected_ = expected_lines;
    window_.centralWidget()->setEnabled(false);
    window_.updateActions();
    QApplication::setOverrideCursor(Qt::BusyCursor);
    window_.statusBar()->showMessage(message);
    window_.progress_->setRange(0, expected_lines > 0 ? static_cast<int>(expected_lines) : 0);
    window_.progress_->setValue(0);
    window_.progress_->show();
    // Loading a document starts with one long parse that lets no events through, so the busy
    // state is drawn now, before the work starts.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    window_.since_events_.start();
  }
  ~BusyScope() {
    window_.log_->flush();
    window_.progress_->hide();
    QApplication::restoreOverrideCursor();
    window_.centralWidget()->setEnabled(true);
    window_.busy_ = false;
    window_.updateActions();
    if (focus_ && focus_->isEnabled()) focus_->setFocus();
  }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

 private:
  MainWindow& window_;
  QPointer<QWidget> focus_;
};

MainWindow::MainWindow(OutputPaths paths, QWidget* parent)
    : QMainWindow(parent),
      sink_([this](std::string_view text) { writeLine(text); }),
      paths_(std::move(paths)) {
  setWindowTitle(tr("Quillory"));
  setWindowIcon(style()->standardIcon(QStyle::SP_FileIcon));
  setAcceptDrops(true);

  buildWidgets();
  form_ = std::make_unique<QtForm>(controls_);
  controller_ = std::make_unique<Controller>(form_->form(), sink_, paths_);

  // The preview needs the controller's lists, so it joins the layout last.
  preview_ = new TitlePreview(controller_->fields(), controller_->form(), this);
  auto* preview_box = findChild<QGroupBox*>(QStringLiteral("previewBox"));
  preview_box->layout()->addWidget(preview_);

  buildMenus();
  fillRateMenu();
  restoreSettings();
  setTabOrder();

  for (auto* edit : controls_.lineLabels)
    connect(edit, &QLineEdit::textChanged, this, &MainWindow::refreshPreview);
  for (auto* menu : controls_.linePopups) {
    connect(menu, &QComboBox::currentIndexChanged, this, &MainWindow::refreshPreview);
  }
  connect(rate_menu_, &QComboBox::currentIndexChanged, this, &MainWindow::applyRate);
  connect(open_button_, &QPushButton::clicked, this, &MainWindow::chooseDocument);
  connect(create_button_, &QPushButton::clicked, this, &MainWindow::createTitles);
  connect(reveal_button_, &QPushButton::clicked, this, &MainWindow::revealOutput);
  connect(save_copy_button_, &QPushButton::clicked, this, &MainWindow::saveOutputCopy);

  updateActions();
  statusBar()->showMessage(tr("Open a Final Cut Pro XML export, or drop one on this window."));
}

MainWindow::~MainWindow() = default;

void MainWindow::buildWidgets() {
  auto* central = new QWidget(this);
  setCentralWidget(central);

  // The document: button, icon and name.
  open_button_ = new QPushButton(tr("&Open…"), central);
  open_button_->setObjectName(QStringLiteral("openButton"));
  open_button_->setToolTip(tr("Choose a Final Cut Pro XML (xmeml) export"));
  controls_.xmlIcon = new QLabel(central);
  controls_.xmlIcon->setObjectName(QStringLiteral("xmlIcon"));
  const int icon_size = style()->pixelMetric(QStyle::PM_LargeIconSize);
  controls_.xmlIcon->setPixmap(style()->standardIcon(QStyle::SP_FileIcon).pixmap(icon_size, icon_size));
  QSizePolicy keep_place = controls_.xmlIcon->sizePolicy();
  keep_place.setRetainSizeWhenHidden(true);
  controls_.xmlIcon->setSizePolicy(keep_place);
  controls_.xmlIcon->setHidden(true);
  controls_.xmlFileName = new QLabel(tr("No document open"), central);
  controls_.xmlFileName->setObjectName(QStringLiteral("xmlFileName"));
  controls_.xmlFileName->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* document_row = new QHBoxLayout;
  document_row->addWidget(open_button_);
  document_row->addWidget(controls_.xmlIcon);
  document_row->addWidget(controls_.xmlFileName, 1);

  // The sequence.
  controls_.templatePopup = new QComboBox(central);
  controls_.templatePopup->setObjectName(QStringLiteral("templatePopup"));
  controls_.templatePopup->setPlaceholderText(tr("(open a document)"));
  controls_.templatePopup->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  controls_.templatePopup->setMinimumContentsLength(16);
  rate_menu_ = new QComboBox(central);
  rate_menu_->setObjectName(QStringLiteral("ratePopup"));
  rate_menu_->setToolTip(tr("The new sequence's frame rate"));
  controls_.nameField = new QLineEdit(central);
  controls_.nameField->setObjectName(QStringLiteral("nameField"));
  controls_.nameField->setAcceptDrops(false);
  controls_.nameField->setToolTip(tr("The new sequence's name"));
  auto* sequence_form = new QFormLayout;
  sequence_form->addRow(tr("&Template:"), controls_.templatePopup);
  sequence_form->addRow(tr("Frame &rate:"), rate_menu_);
  sequence_form->addRow(tr("Sequence &name:"), controls_.nameField);

  // The five title lines: a label in front, a choice of what the line shows.
  auto* lines_box = new QGroupBox(tr("Title lines"), central);
  auto* lines_grid = new QGridLayout(lines_box);
  lines_grid->addWidget(new QLabel(tr("Label"), lines_box), 0, 1);
  lines_grid->addWidget(new QLabel(tr("Shows"), lines_box), 0, 2);
  const int min_field_width = fontMetrics().averageCharWidth() * 14;
  for (std::size_t i = 0; i < 5; ++i) {
    const int row = static_cast<int>(i) + 1;
    auto* caption = new QLabel(tr("Line &%1:").arg(row), lines_box);
    auto* edit = new QLineEdit(lines_box);
    edit->setObjectName(QStringLiteral("line%1Label").arg(row));
    edit->setAcceptDrops(false);
    edit->setMinimumWidth(min_field_width);
    edit->setPlaceholderText(tr("no label"));
    edit->setToolTip(tr("Text put in front of line %1 (with \"Text\": the whole line)").arg(row));
    auto* menu = new QComboBox(lines_box);
    menu->setObjectName(QStringLiteral("line%1Popup").arg(row));
    for (std::string_view title : CHOICE_TITLES) {
      menu->addItem(QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size())));
    }
    // The first title is a single space, so it shows as a blank item; say what it means.
    menu->setItemData(0, tr("An empty line"), Qt::ToolTipRole);
    menu->setItemData(0, tr("Empty line"), Qt::AccessibleTextRole);
    menu->setToolTip(tr("What line %1 shows").arg(row));
    caption->setBuddy(edit);
    lines_grid->addWidget(caption, row, 0);
    lines_grid->addWidget(edit, row, 1);
    lines_grid->addWidget(menu, row, 2);
    controls_.lineLabels[i] = edit;
    controls_.linePopups[i] = menu;
  }
  lines_grid->setColumnStretch(1, 1);
  controls_.tcrCheckbox = new QCheckBox(tr("Timecode R&eader on every clip"), lines_box);
  controls_.tcrCheckbox->setObjectName(QStringLiteral("tcrCheckbox"));
  lines_grid->addWidget(controls_.tcrCheckbox, 6, 1, 1, 2);

  auto* left = new QVBoxLayout;
  left->addLayout(sequence_form);
  left->addWidget(lines_box);
  left->addStretch(1);

  auto* preview_box = new QGroupBox(tr("Preview"), central);
  preview_box->setObjectName(QStringLiteral("previewBox"));
  new QVBoxLayout(preview_box);

  auto* columns = new QHBoxLayout;
  columns->addLayout(left, 3);
  columns->addWidget(preview_box, 2);

  // The run and where its file went.
  create_button_ = new QPushButton(tr("&Create Titles"), central);
  create_button_->setObjectName(QStringLiteral("createButton"));
  create_button_->setToolTip(tr("Write the title sequence (Ctrl+Return)"));
  create_button_->setDefault(true);
  output_row_ = new QWidget(central);
  output_row_->setObjectName(QStringLiteral("outputRow"));
  output_label_ = new QLabel(output_row_);
  output_label_->setObjectName(QStringLiteral("outputPath"));
  output_label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  // A long path must not widen the window: it is cut, and shown whole as tool tip.
  output_label_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  output_label_->setMinimumWidth(fontMetrics().averageCharWidth() * 10);
  reveal_button_ = new QPushButton(tr("&Show in Folder"), output_row_);
  reveal_button_->setObjectName(QStringLiteral("revealButton"));
  save_copy_button_ = new QPushButton(tr("Save a Cop&y…"), output_row_);
  save_copy_button_->setObjectName(QStringLiteral("saveCopyButton"));
  auto* output_layout = new QHBoxLayout(output_row_);
  output_layout->setContentsMargins(0, 0, 0, 0);
  output_layout->addWidget(output_label_, 1);
  output_layout->addWidget(reveal_button_);
  output_layout->addWidget(save_copy_button_);
  output_row_->hide();
  auto* run_row = new QHBoxLayout;
  run_row->addWidget(create_button_);
  run_row->addWidget(output_row_, 1);

  log_ = new LogPane(central);
  log_->setObjectName(QStringLiteral("logPane"));

  auto* layout = new QVBoxLayout(central);
  layout->addLayout(document_row);
  layout->addLayout(columns, 1);
  layout->addLayout(run_row);
  layout->addWidget(log_);

  progress_ = new QProgressBar(this);
  progress_->setObjectName(QStringLiteral("progress"));
  progress_->setMaximumWidth(fontMetrics().averageCharWidth() * 30);
  progress_->hide();
  statusBar()->addPermanentWidget(progress_);
}

void MainWindow::buildMenus() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  open_action_ = file->addAction(tr("&Open…"), this, &MainWindow::chooseDocument);
  open_action_->setShortcut(QKeySequence::Open);
  create_action_ = file->addAction(tr("&Create Titles"), this, &MainWindow::createTitles);
  create_action_->setShortcuts(
      {QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)});
  file->addSeparator();
  QAction* quit = file->addAction(tr("&Quit"), this, &QWidget::close);
  quit->setShortcut(QKeySequence::Quit);
}

void MainWindow::setTabOrder() {
  QList<QWidget*> chain{open_button_, controls_.templatePopup, rate_menu_, controls_.nameField};
  for (std::size_t i = 0; i < 5; ++i) chain << controls_.lineLabels[i] << controls_.linePopups[i];
  chain << controls_.tcrCheckbox << preview_->clipMenu() << create_button_ << reveal_button_
        << save_copy_button_ << log_->toggleButton();
  for (qsizetype i = 1; i < chain.size(); ++i) QWidget::setTabOrder(chain[i - 1], chain[i]);
}

void MainWindow::restoreSettings() {
  const QSettings settings;
  const FormSettings values = load_form_settings(settings);
  for (std::size_t i = 0; i < 5; ++i) {
    controls_.lineLabels[i]->setText(values.labels[i]);
    select_text(controls_.linePopups[i], values.choices[i]);
  }
  controls_.tcrCheckbox->setChecked(values.timecode_reader);
  select_text(rate_menu_, values.rate);
  applyRate();
  last_folder_ = values.last_folder;
  if (values.geometry.isEmpty() || !restoreGeometry(values.geometry)) resize(sizeHint());
}

void MainWindow::saveSettings() const {
  FormSettings values;
  for (std::size_t i = 0; i < 5; ++i) {
    values.labels[i] = controls_.lineLabels[i]->text();
    values.choices[i] = controls_.linePopups[i]->currentText();
  }
  values.timecode_reader = controls_.tcrCheckbox->isChecked();
  values.rate = rate_menu_->currentText();
  values.last_folder = last_folder_;
  values.geometry = saveGeometry();
  QSettings settings;
  save_form_settings(settings, values);
}

QString MainWindow::outputPath() const {
  return paths_.TEMP_XML_FILE ? QString::fromStdString(*paths_.TEMP_XML_FILE) : QString();
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
  const auto shown_before = form_->xmlIcon.documents_shown();
  std::optional<QString> error;
  {
    const BusyScope busy(*this, tr("Opening %1…").arg(name), 0);
    try {
      controller_->get_info_from_clips(local_path(path));
    } catch (const std::exception& failure) {
      error = QString::fromStdString(failure.what());
    } catch (...) {
      error = tr("quillory: unexpected error");
    }
  }
  const bool shown = form_->xmlIcon.documents_shown() != shown_before;
  // Even a failed open has replaced the lists by then; the menus follow what the core holds.
  if (shown) refreshAfterOpen(path);
  if (error) {
    statusBar()->showMessage(tr("Could not open %1.").arg(name));
    showError(tr("Could not open %1.").arg(name), *error);
    return false;
  }
  if (!shown) {
    statusBar()->showMessage(tr("%1 is not an xmeml document; nothing changed.").arg(name));
    showError(tr("%1 is not a Final Cut Pro XML document.").arg(name),
              tr("Its first element is not <xmeml>. The window still shows the previous "
                 "document."));
    return false;
  }
  const auto& fields = controller_->fields();
  statusBar()->showMessage(tr("Opened %1: %2 clips, %3 templates.")
                               .arg(name)
                               .arg(fields.clips_array.size())
                               .arg(fields.templates_array.size()));
  return true;
}

void MainWindow::refreshAfterOpen(const QString& path) {
  const auto& fields = controller_->fields();
  QStringList templates;
  for (const auto& title : fields.templates_array) templates << QString::fromStdString(title.name);
  refill(controls_.templatePopup, templates);
  fillRateMenu();
  controls_.nameField->setText(
      QString::fromStdString(sequence_name_for(QFileInfo(path).fileName().toStdString())));
  last_folder_ = QFileInfo(path).absolutePath();
  preview_->reloadClips();
  updateActions();
}

void MainWindow::fillRateMenu() {
  QStringList rates;
  for (const auto& rate : controller_->fields().frame_rates) rates << QString::fromStdString(rate);
  if (rates.isEmpty()) {
    for (const auto& rate : FRAME_RATES) {
      rates << QString::fromUtf8(rate.type.data(), static_cast<qsizetype>(rate.type.size()));
    }
  }
  {
    const QSignalBlocker quiet(rate_menu_);
    refill(rate_menu_, rates);
  }
  applyRate();
}

void MainWindow::applyRate() {
  controller_->set_sequence_rate(rate_menu_->currentText().toStdString());
}

bool MainWindow::createTitles() {
  if (busy_ || controller_->fields().templates_array.empty()) return false;
  applyRate();
  std::optional<QString> error;
  {
    // Two output lines per title.
    const auto expected = static_cast<long long>(controller_->fields().clips_array.size()) * 2;
    const BusyScope busy(*this, tr("Creating titles…"), expected);
    try {
      controller_->create_fcp_xml();
    } catch (const std::exception& failure) {
      error = QString::fromStdString(failure.what());
    } catch (...) {
      error = tr("quillory: unexpected error");
    }
  }
  if (error) {
    statusBar()->showMessage(tr("No titles were written; the previous file is unchanged."));
    showError(tr("Could not create titles. The previous file is unchanged."), *error);
    return false;
  }
  const QString path = outputPath();
  output_label_->setText(tr("Written to %1").arg(path));
  output_label_->setToolTip(path);
  output_row_->show();
  statusBar()->showMessage(
      tr("Wrote %1 titles to %2.").arg(controller_->fields().clips_array.size()).arg(path));
  return true;
}

void MainWindow::revealOutput() {
  QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(outputPath()).absolutePath()));
}

void MainWindow::saveOutputCopy() {
  const QString suggestion =
      QDir(last_folder_)
          .filePath(controls_.nameField->text().isEmpty() ? QStringLiteral("Titles.xml")
                                                  : controls_.nameField->text() + ".xml");
  const QString target = QFileDialog::getSaveFileName(this, tr("Save a Copy of the Titles"),
                                                      suggestion, tr("XML (*.xml)"));
  if (!target.isEmpty()) saveOutputCopyTo(target);
}

bool MainWindow::saveOutputCopyTo(const QString& target) {
  // The save dialog has already asked before replacing an existing file.
  if (QFile::exists(target) && !QFile::remove(target)) {
    showError(tr("Could not replace %1.").arg(target),
              tr("The existing file could not be removed."));
    return false;
  }
  QFile source(outputPath());
  if (!source.copy(target)) {
    showError(tr("Could not save a copy to %1.").arg(target), source.errorString());
    return false;
  }
  statusBar()->showMessage(tr("Saved a copy to %1.").arg(target));
  return true;
}

void MainWindow::refreshPreview() {
  if (!busy_) preview_->refresh();
}

void MainWindow::updateActions() {
  const bool open = !controller_->fields().templates_array.empty();
  create_button_->setEnabled(open && !busy_);
  create_action_->setEnabled(open && !busy_);
  open_action_->setEnabled(!busy_);
}

void MainWindow::showError(const QString& summary, const QString& message) {
  // Window-modal and not blocking: the window stays drawn behind it and nothing waits on it.
  auto* box = new QMessageBox(QMessageBox::Warning, tr("Quillory"), summary, QMessageBox::Ok, this);
  box->setObjectName(QStringLiteral("errorDialog"));
  box->setInformativeText(message);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

void MainWindow::writeLine(std::string_view text) {
  std::cout << text << '\n' << std::flush;
  log_->append(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
  ++lines_seen_;
  letEventsThrough();
}

void MainWindow::letEventsThrough() {
  if (!busy_ || since_events_.elapsed() < kEventIntervalMs) return;
  log_->flush();
  if (lines_expected_ > 0) {
    progress_->setValue(static_cast<int>(std::min(lines_seen_, lines_expected_)));
  }
  QCoreApplication::processEvents();
  since_events_.restart();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  // An operation holds the form; closing under it would pull the controls away.
  if (busy_) {
    event->ignore();
    return;
  }
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
