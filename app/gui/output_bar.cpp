#include "output_bar.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QUrl>

namespace quillory::gui {
namespace {

// Copies in pieces, so that an output of a hundred thousand titles is never held whole.
bool copy_file(QFile& from, QSaveFile& to) {
  if (!from.open(QIODevice::ReadOnly) || !to.open(QIODevice::WriteOnly)) return false;
  while (!from.atEnd()) {
    const QByteArray piece = from.read(1 << 20);
    if (piece.isEmpty() || to.write(piece) != piece.size()) return false;
  }
  return to.commit();
}

}  // namespace

void show_error(QWidget* parent, const QString& summary, const QString& message) {
  auto* box = new QMessageBox(QMessageBox::Warning, QObject::tr("Quillory"), summary,
                              QMessageBox::Ok, parent);
  box->setObjectName(QStringLiteral("errorDialog"));
  box->setInformativeText(message);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->open();
}

OutputBar::OutputBar(QString output_path, std::function<QString()> suggested_copy,
                     std::function<QString(const QString&)> refusal, QWidget* parent)
    : QWidget(parent),
      output_path_(std::move(output_path)),
      suggested_copy_(std::move(suggested_copy)),
      refusal_(std::move(refusal)),
      label_(new QLabel(this)),
      reveal_(new QPushButton(tr("&Show in Folder"), this)),
      save_copy_(new QPushButton(tr("Save a Cop&y…"), this)) {
  setObjectName(QStringLiteral("outputRow"));
  label_->setObjectName(QStringLiteral("outputPath"));
  label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  // A long path must not widen the window: it is cut, and shown whole as tool tip.
  label_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  reveal_->setObjectName(QStringLiteral("revealButton"));
  save_copy_->setObjectName(QStringLiteral("saveCopyButton"));
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(label_, 1);
  layout->addWidget(reveal_);
  layout->addWidget(save_copy_);
  connect(reveal_, &QPushButton::clicked, this, [this] {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(output_path_).absolutePath()));
  });
  connect(save_copy_, &QPushButton::clicked, this, &OutputBar::saveCopy);
  hide();
}

void OutputBar::showWritten(const QString& path) {
  output_path_ = path;
  label_->setText(tr("Written to %1").arg(output_path_));
  label_->setToolTip(output_path_);
  show();
}

void OutputBar::saveCopy() {
  const QString target = QFileDialog::getSaveFileName(this, tr("Save a Copy of the Titles"),
                                                      suggested_copy_(),
                                                      tr("XML (*.xml *.fcpxml)"));
  if (!target.isEmpty()) saveCopyTo(target);
}

bool OutputBar::saveCopyTo(const QString& target) {
  // Hidden, the bar stands for no titles of the open document: the file holds another's.
  if (isHidden()) return false;
  if (const QString refused = refusal_(target); !refused.isEmpty()) {
    show_error(window(), tr("Could not save a copy to %1.").arg(target), refused);
    return false;
  }
  QFile source(output_path_);
  QSaveFile copy(target);
  if (!copy_file(source, copy)) {
    const QString reason =
        copy.error() != QFileDevice::NoError ? copy.errorString() : source.errorString();
    show_error(window(), tr("Could not save a copy to %1.").arg(target), reason);
    return false;
  }
  return true;
}

}  // namespace quillory::gui
