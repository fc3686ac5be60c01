#include "title_preview.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>
#include <algorithm>

#include "source/timecode.h"


namespace quillory::gui {

TitlePreview::TitlePreview(std::function<LineSettings()> lines, QWidget* parent)
    : QWidget(parent),
      lines_(std::move(lines)),
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
  setClips(nullptr);
}

void TitlePreview::setClips(const std::vector<ClipRecord>* clips, int timebase) {
  clips_ = clips;
  const int previous = std::max(clip_menu_->currentIndex(), 0);
  QStringList names;
  const std::size_t count = clips_ != nullptr ? clips_->size() : 0;
  names.reserve(static_cast<qsizetype>(count));
  for (std::size_t i = 0; i < count; ++i) {
    const auto& clip = (*clips_)[i];
    // Numbered, because clip names need not be unique; a shot with its place in the sequence.
    QString name = QStringLiteral("%1. %2").arg(i + 1).arg(QString::fromStdString(clip.clip_name));
    if (clip.shot) {
      name += tr(" at %1").arg(QString::fromStdString(format_timecode(clip.shot->start, {timebase, false})));
    }
    names.append(name);
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
  if (clips_ == nullptr || index < 0 || static_cast<std::size_t>(index) >= clips_->size()) {
    view_->clear();
    return;
  }
  const ClipRecord& clip = (*clips_)[static_cast<std::size_t>(index)];
  view_->setPlainText(QString::fromStdString(preview_title_text(clip, lines_())));
}

QString TitlePreview::text() const {
  return view_->toPlainText();
}

}  // namespace quillory::gui
