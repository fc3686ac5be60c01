#include "batch_dialog.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quillory::gui {
namespace {

std::string local_path(const QString& path) { return QFile::encodeName(path).toStdString(); }

QString from_local(const std::string& path) { return QFile::decodeName(path.c_str()); }

// What the list says of a source: where its titles went, or the message without the
// program's name in front.
QString result_text(const BatchResult& result, const QString& output) {
  if (result.written) {
    QString text = BatchDialog::tr("Written to %1").arg(output);
    if (!result.report.summary.empty()) {
      text += QStringLiteral(" (") +
              QString::fromStdString(result.report.summary).remove(QStringLiteral("quillory: ")) +
              QLatin1Char(')');
    }
    return text;
  }
  QString message = QString::fromStdString(result.message);
  if (message.startsWith(QStringLiteral("quillory: "))) message.remove(0, 10);
  if (result.incomplete) message += BatchDialog::tr(" (“Accept incomplete exports” takes this)");
  return message;
}

}  // namespace

BatchDialog::BatchDialog(Form form, OutputPaths paths, QString folder, QWidget* parent)
    : QDialog(parent),
      form_(std::move(form)),
      paths_(std::move(paths)),
      start_folder_(std::move(folder)),
      list_(new QTreeWidget(this)),
      folder_label_(new QLabel(tr("(choose a folder)"), this)),
      status_(new QLabel(this)),
      add_button_(new QPushButton(tr("&Add Exports…"), this)),
      folder_button_(new QPushButton(tr("Output &Folder…"), this)),
      create_button_(new QPushButton(tr("&Create Titles"), this)),
      close_button_(new QPushButton(tr("Close"), this)) {
  setWindowTitle(tr("Create Titles for Several Exports"));
  list_->setObjectName(QStringLiteral("batchList"));
  list_->setHeaderLabels({tr("Export"), tr("Result")});
  list_->setRootIsDecorated(false);
  list_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
  folder_label_->setObjectName(QStringLiteral("batchFolder"));
  status_->setObjectName(QStringLiteral("batchStatus"));
  status_->setWordWrap(true);
  create_button_->setObjectName(QStringLiteral("batchCreateButton"));
  create_button_->setDefault(true);

  auto* folder_row = new QHBoxLayout;
  folder_row->addWidget(new QLabel(tr("Titles go to:"), this));
  folder_row->addWidget(folder_label_, 1);
  folder_row->addWidget(folder_button_);
  auto* buttons = new QDialogButtonBox(this);
  buttons->addButton(add_button_, QDialogButtonBox::ActionRole);
  buttons->addButton(create_button_, QDialogButtonBox::ApplyRole);
  buttons->addButton(close_button_, QDialogButtonBox::RejectRole);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(new QLabel(tr("Each export's titles go to the folder as NAME.xml, with the "
                                  "window's settings; each sequence is named after its export."),
                               this));
  layout->addWidget(list_, 1);
  layout->addLayout(folder_row);
  layout->addWidget(status_);
  layout->addWidget(buttons);

  connect(add_button_, &QPushButton::clicked, this, &BatchDialog::chooseSources);
  connect(folder_button_, &QPushButton::clicked, this, &BatchDialog::chooseFolder);
  connect(create_button_, &QPushButton::clicked, this, &BatchDialog::start);
  connect(close_button_, &QPushButton::clicked, this, &BatchDialog::reject);
  resize(fontMetrics().averageCharWidth() * 100, fontMetrics().height() * 24);
  updateButtons();
}

BatchDialog::~BatchDialog() {
  if (worker_.joinable()) worker_.join();
}

void BatchDialog::addSources(const QStringList& paths) {
  if (isRunning()) return;
  for (const QString& path : paths) {
    if (sources_.contains(path)) continue;
    sources_ << path;
    list_->addTopLevelItem(new QTreeWidgetItem(QStringList{path, QString()}));
  }
  updateButtons();
}

void BatchDialog::setOutputFolder(const QString& folder) {
  if (isRunning()) return;
  output_folder_ = folder;
  folder_label_->setText(folder);
  updateButtons();
}

void BatchDialog::chooseSources() {
  const QStringList paths = QFileDialog::getOpenFileNames(
      this, tr("Add Final Cut Pro XML exports"), start_folder_,
      tr("Final Cut Pro XML (*.xml);;All files (*)"));
  if (!paths.isEmpty()) start_folder_ = QFileInfo(paths.constFirst()).absolutePath();
  addSources(paths);
}

void BatchDialog::chooseFolder() {
  const QString folder = QFileDialog::getExistingDirectory(
      this, tr("Folder for the titles"), output_folder_.isEmpty() ? start_folder_ : output_folder_);
  if (!folder.isEmpty()) setOutputFolder(folder);
}

bool BatchDialog::start() {
  if (isRunning() || sources_.isEmpty() || output_folder_.isEmpty()) return false;
  std::vector<std::string> sources;
  for (const QString& source : sources_) sources.push_back(local_path(source));
  const BatchPlan plan = plan_batch(sources, local_path(output_folder_));
  if (!plan.clash.empty()) {
    status_->setText(from_local(plan.clash).remove(QStringLiteral("quillory: ")));
    return false;
  }
  entries_ = plan.entries;
  written_ = 0;
  for (int row = 0; row < list_->topLevelItemCount(); ++row) list_->topLevelItem(row)->setText(1, {});
  status_->setText(tr("Creating titles for %n export(s)…", nullptr, static_cast<int>(sources.size())));
  // The threads take copies: the dialog's members stay the dialog thread's.
  worker_ = std::thread([this, entries = plan.entries, form = form_, paths = paths_] {
    try {
      run_in_parallel(entries.size(), default_jobs(), [&](std::size_t index) {
        NullSink lines;  // from several exports at once they would only interleave
        const BatchEntry& entry = entries[index];
        Controller controller(paths);
        Form named = form;
        named.nameField = sequence_name_for(entry.source);
        const BatchResult result = run_on_source(entry.source, named, controller, lines, [&] {
          return controller.create_fcp_xml(named, lines, entry.output);
        });
        QMetaObject::invokeMethod(this, [this, index, result] { showResult(index, result); },
                                  Qt::QueuedConnection);
      });
    } catch (const std::exception&) {
      // No thread could be started: the exports not tried keep an empty result.
    }
    QMetaObject::invokeMethod(this, [this] { endRun(); }, Qt::QueuedConnection);
  });
  updateButtons();
  return true;
}

void BatchDialog::showResult(std::size_t index, const BatchResult& result) {
  QTreeWidgetItem* item = list_->topLevelItem(static_cast<int>(index));
  item->setText(1, result_text(result, from_local(entries_.at(index).output)));
  item->setToolTip(1, item->text(1));
  written_ += result.written ? 1 : 0;
}

void BatchDialog::endRun() {
  worker_.join();
  status_->setText(tr("%1 of %2 exports written.").arg(written_).arg(entries_.size()));
  updateButtons();
  Q_EMIT runFinished();
}

QStringList BatchDialog::results() const {
  QStringList texts;
  for (int row = 0; row < list_->topLevelItemCount(); ++row) texts << list_->topLevelItem(row)->text(1);
  return texts;
}

void BatchDialog::reject() {
  if (!isRunning()) QDialog::reject();
}

void BatchDialog::updateButtons() {
  const bool idle = !isRunning();
  add_button_->setEnabled(idle);
  folder_button_->setEnabled(idle);
  close_button_->setEnabled(idle);
  create_button_->setEnabled(idle && !sources_.isEmpty() && !output_folder_.isEmpty());
}

}  // namespace quillory::gui
