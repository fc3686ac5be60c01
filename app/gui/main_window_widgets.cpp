#include "main_window.h"

// The window's widgets, menus and tab order, as they are built once.

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "batch_dialog.h"
#include "document_bar.h"
#include "form_panel.h"
#include "log_pane.h"
#include "operation_progress.h"
#include "output_bar.h"
#include "title_preview.h"

namespace quillory::gui {

void MainWindow::buildWidgets() {
  auto* central = new QWidget(this);
  setCentralWidget(central);

  document_ = new DocumentBar(central);
  form_ = new FormPanel(central);
  auto* preview_box = new QGroupBox(tr("Preview"), central);
  preview_ = new TitlePreview(
      [this] {
        const Form values = form();
        return PreviewSetup{controller_.title_settings(values).lines,
                            controller_.title_style(values), controller_.frame_size()};
      },
      preview_box);
  (new QVBoxLayout(preview_box))->addWidget(preview_);
  auto* columns = new QHBoxLayout;
  // The form keeps its natural width; the preview takes all the room the window gives.
  columns->addWidget(form_, 0);
  columns->addWidget(preview_box, 1);

  // The run and where its file went.
  create_button_ = new QPushButton(tr("&Create Titles"), central);
  create_button_->setObjectName(QStringLiteral("createButton"));
  create_button_->setToolTip(tr("Write the title sequence (Ctrl+Return)"));
  create_button_->setDefault(true);
  output_ = new OutputBar(outputPath(), [this] { return suggestedCopy(); },
                          [this](const QString& target) { return copyRefusal(target); }, central);
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

  // Why the preview shows no frame, for as long as it shows none.
  auto* media_status = new QLabel(this);
  media_status->setObjectName(QStringLiteral("mediaStatus"));
  statusBar()->addPermanentWidget(media_status);
  connect(preview_, &TitlePreview::mediaStatus, media_status, &QLabel::setText);

  auto* bar = new QProgressBar(this);
  bar->setObjectName(QStringLiteral("progress"));
  bar->setMaximumWidth(fontMetrics().averageCharWidth() * 30);
  bar->hide();
  statusBar()->addPermanentWidget(bar);
  progress_ = std::make_unique<OperationProgress>(*log_, *bar);
  cancel_button_ = new QPushButton(tr("Cancel"), this);
  cancel_button_->setObjectName(QStringLiteral("cancelButton"));
  cancel_button_->setToolTip(tr("Stop creating titles; the previous file stays as it was (Esc)"));
  cancel_button_->setShortcut(QKeySequence::Cancel);
  cancel_button_->hide();
  statusBar()->addPermanentWidget(cancel_button_);
  connect(cancel_button_, &QPushButton::clicked, this, [this] { progress_->cancel(); });
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

  QMenu* preview = menuBar()->addMenu(tr("&Preview"));
  preview->addAction(tr("Media &Folder…"), this, [this] {
    const QString folder = QFileDialog::getExistingDirectory(
        this, tr("Media Folder: where to look for media by file name"), preview_->mediaFolder());
    if (!folder.isEmpty()) preview_->setMediaFolder(folder);
  });
  preview->addAction(preview_->actualSizeAction());
}

void MainWindow::setTabOrder() {
  QList<QWidget*> chain{document_->openButton(), document_->tolerantBox()};
  chain << form_->controls() << preview_->clipMenu() << create_button_
        << output_->revealButton() << output_->saveCopyButton() << log_->toggleButton();
  for (qsizetype i = 1; i < chain.size(); ++i) QWidget::setTabOrder(chain[i - 1], chain[i]);
}

}  // namespace quillory::gui
