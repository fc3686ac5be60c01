#include "document_bar.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace quillory::gui {

DocumentBar::DocumentBar(QWidget* parent)
    : QWidget(parent),
      open_(new QPushButton(tr("&Open…"), this)),
      icon_(new QLabel(this)),
      file_name_(new QLabel(tr("No document open"), this)) {
  open_->setObjectName(QStringLiteral("openButton"));
  open_->setToolTip(tr("Choose a Final Cut Pro XML (xmeml) export"));
  icon_->setObjectName(QStringLiteral("xmlIcon"));
  const int icon_size = style()->pixelMetric(QStyle::PM_LargeIconSize);
  icon_->setPixmap(style()->standardIcon(QStyle::SP_FileIcon).pixmap(icon_size, icon_size));
  QSizePolicy keep_place = icon_->sizePolicy();
  keep_place.setRetainSizeWhenHidden(true);
  icon_->setSizePolicy(keep_place);
  icon_->setHidden(true);
  file_name_->setObjectName(QStringLiteral("xmlFileName"));
  file_name_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(open_);
  layout->addWidget(icon_);
  layout->addWidget(file_name_, 1);
}

void DocumentBar::showDocument(const QString& path) {
  icon_->setHidden(false);
  icon_->setToolTip(path);
  file_name_->setText(QFileInfo(path).fileName());
}

}  // namespace quillory::gui
