#include "document_bar.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace quillory::gui {

DocumentBar::DocumentBar(QWidget* parent)
    : QWidget(parent),
      open_(new QPushButton(tr("&Open…"), this)),
      tolerant_(new QCheckBox(tr("Accept incomplete exports"), this)),
      icon_(new QLabel(this)),
      file_name_(new QLabel(tr("No document open"), this)) {
  open_->setObjectName(QStringLiteral("openButton"));
  open_->setToolTip(tr("Choose a Final Cut Pro XML (xmeml) export"));
  tolerant_->setObjectName(QStringLiteral("tolerantCheckbox"));
  tolerant_->setToolTip(
      tr("Open master-clip exports that lack timing, logging, a video item or a known rate, or "
         "have more than four audio items, assuming what is missing; the log lists every "
         "assumption"));
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
  layout->addWidget(tolerant_);
}

bool DocumentBar::tolerant() const { return tolerant_->isChecked(); }

QString DocumentBar::tolerantHint() const {
  return tr("\n\n“%1” takes this: tick it to read the document with what is missing assumed.")
      .arg(tolerant_->text());
}

void DocumentBar::showDocument(const FileDisplay& display) {
  icon_->setHidden(display.xmlIconHidden);
  icon_->setToolTip(QString::fromStdString(display.xmlIconToolTip));
  file_name_->setText(QString::fromStdString(display.xmlFileName));
}

}  // namespace quillory::gui
