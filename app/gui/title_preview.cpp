#include "title_preview.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>
#include <algorithm>

#include "titles/compose_title_text.h"

namespace quillory::gui {

TitlePreview::TitlePreview(const ControllerFields& fields, const Form& form, QWidget* parent)
    : QWidget(parent),
      fields_(fields),
      form_(form),
      clip_menu_(new QComboBox(this)),
      view_(new QPlainTextEdit(this)) {
  clip_menu_->setObjectName(QStringLiteral("previewClip"));
  clip_menu_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  clip_menu_->setMinimumContentsLength(12);
  clip_menu_->setMaxVisibleItems(20);

  view_->setObjectName(QStringLiteral("previewText"));
  view_->setReadOnly(true);
  view_->setAcceptDrops(false);
  view_->setLineWrapMode(QPlainTextEdit::NoWrap);
  view_->setPlaceholderText(tr("Open a document to see its titles here."));
  view_->setMinimumHeight(view_->fontMetrics().lineSpacing() * 7);
  // Read-only: tabbing into it would only trap the keyboard.
  view_->setFocusPolicy(Qt::ClickFocus);

  auto* clip_label = new QLabel(tr("Cli&p:"), this);
  clip_label->setBuddy(clip_menu_);
  auto* chooser = new QFormLayout;
  chooser->addRow(clip_label, clip_menu_);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(chooser);
  layout->addWidget(view_, 1);

  connect(clip_menu_, &QComboBox::currentIndexChanged, this, &TitlePreview::refresh);
  reloadClips();
}

void TitlePreview::reloadClips() {
  const int previous = std::max(clip_menu_->currentIndex(), 0);
  QStringList names;
  names.reserve(static_cast<qsizetype>(fields_.clips_array.size()));
  for (std::size_t i = 0; i < fields_.clips_array.size(); ++i) {
    const auto& clip = fields_.clips_array[i];
    // Numbered, because clip names need not be unique.
    names.append(QStringLiteral("%1. %2").arg(i + 1).arg(QString::fromStdString(clip.clip_name)));
  }
  {
    const QSignalBlocker quiet(clip_menu_);
    clip_menu_->clear();
    clip_menu_->addItems(names);
    if (!names.isEmpty()) clip_menu_->setCurrentIndex(std::min<int>(previous, names.size() - 1));
  }
  clip_menu_->setEnabled(!names.isEmpty());
  refresh();
}

void TitlePreview::refresh() {
  const int index = clip_menu_->currentIndex();
  if (index < 0 || static_cast<std::size_t>(index) >= fields_.clips_array.size()) {
    view_->clear();
    return;
  }
  std::string text = compose_title_text(fields_.clips_array[static_cast<std::size_t>(index)],
                                        read_line_settings(form_));
  std::replace(text.begin(), text.end(), '\r', '\n');
  view_->setPlainText(QString::fromStdString(text));
}

QString TitlePreview::text() const {
  return view_->toPlainText();
}

}  // namespace quillory::gui
