#include "title_preview.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "frame_loader.h"
#include "source/timecode.h"
#include "title_canvas.h"

namespace quillory::gui {
namespace {

// Asks for all the room its picture asks for, where a scroll area asks for a few lines of text.
class Room : public QScrollArea {
 public:
  using QScrollArea::QScrollArea;
  QSize sizeHint() const override { return widget() != nullptr ? widget()->sizeHint() : QScrollArea::sizeHint(); }
};

QString numbers(const QList<int>& lines) {
  QStringList text;
  for (int line : lines) text << QString::number(line);
  return text.join(QStringLiteral(", "));
}

}  // namespace

TitlePreview::TitlePreview(std::function<PreviewSetup()> setup, QWidget* parent)
    : QWidget(parent),
      setup_(std::move(setup)),
      clip_menu_(new QComboBox(this)),
      canvas_(new TitleCanvas(this)),
      room_(new Room(this)),
      actual_size_(new QAction(tr("Show at &100%"), this)),
      frames_(new FrameLoader(this)),
      view_(new QPlainTextEdit(this)),
      check_(new QPushButton(tr("Check all clips"), this)) {
  clip_menu_->setObjectName(QStringLiteral("previewClip"));
  clip_menu_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  clip_menu_->setMinimumContentsLength(12);
  clip_menu_->setMaxVisibleItems(20);
  canvas_->setFocusPolicy(Qt::StrongFocus);
  canvas_->setAccessibleName(tr("Title as drawn; arrow keys choose the clip"));

  view_->setObjectName(QStringLiteral("previewText"));
  view_->setReadOnly(true);
  view_->setAcceptDrops(false);
  view_->setLineWrapMode(QPlainTextEdit::NoWrap);
  view_->setPlaceholderText(tr("Open a document to see its titles here."));
  view_->setMaximumHeight(view_->fontMetrics().lineSpacing() * 6);
  view_->setFocusPolicy(Qt::ClickFocus);
  check_->setObjectName(QStringLiteral("checkAllClips"));
  check_->setToolTip(tr("List every clip whose title has a line outside the title-safe area"));

  room_->setObjectName(QStringLiteral("previewRoom"));
  room_->setWidget(canvas_);
  room_->setWidgetResizable(true);
  room_->setAlignment(Qt::AlignCenter);
  room_->setFrameShape(QFrame::NoFrame);
  actual_size_->setObjectName(QStringLiteral("actualSize"));
  actual_size_->setCheckable(true);
  actual_size_->setToolTip(tr("Show the frame pixel for pixel, scrolling; off, fit it to the room"));
  auto* actual_size = new QToolButton(this);
  actual_size->setDefaultAction(actual_size_);

  auto* clip_label = new QLabel(tr("Cli&p:"), this);
  clip_label->setBuddy(clip_menu_);
  auto* chooser = new QHBoxLayout;
  chooser->addWidget(clip_label);
  chooser->addWidget(clip_menu_, 1);
  chooser->addWidget(actual_size);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addLayout(chooser);
  layout->addWidget(room_, 1);
  layout->addWidget(view_);
  layout->addWidget(check_, 0, Qt::AlignLeft);

  connect(clip_menu_, &QComboBox::currentIndexChanged, this, &TitlePreview::refresh);
  connect(check_, &QPushButton::clicked, this, [this] { Q_EMIT clipsChecked(checkAllClips()); });
  connect(actual_size_, &QAction::toggled, this, &TitlePreview::fitCanvas);
  connect(frames_, &FrameLoader::frameReady, this, [this](int index, const QImage& frame) {
    if (index != framed_) return;
    canvas_->setPicture(frame);
    Q_EMIT mediaStatus({});
    Q_EMIT frameSettled();
  });
  connect(frames_, &FrameLoader::frameMissing, this, [this](int index, const QString& why) {
    if (index != framed_) return;
    Q_EMIT mediaStatus(why);
    Q_EMIT frameSettled();
  });
  setClips(nullptr);
}

void TitlePreview::setClips(const std::vector<ClipRecord>* clips, const FrameRate& rate) {
  clips_ = clips;
  forgetFrames();
  const int previous = std::max(clip_menu_->currentIndex(), 0);
  QStringList names;
  const std::size_t count = clips_ != nullptr ? clips_->size() : 0;
  names.reserve(static_cast<qsizetype>(count));
  for (std::size_t i = 0; i < count; ++i) {
    const auto& clip = (*clips_)[i];
    // Numbered, because clip names need not be unique; a shot with its place in the sequence.
    QString name = QStringLiteral("%1. %2").arg(i + 1).arg(QString::fromStdString(clip.clip_name));
    if (clip.shot) {
      name += tr(" at %1").arg(QString::fromStdString(format_timecode(clip.shot->place.start.value(), {rate.timebase(), false})));
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
  check_->setEnabled(!names.isEmpty());
  refresh();
}

QStringList TitlePreview::lines_of(const std::string& title) {
  QStringList lines = QString::fromStdString(title).split(QLatin1Char('\r'));
  if (!lines.isEmpty() && lines.back().isEmpty()) lines.removeLast();  // the last line's end
  return lines;
}

void TitlePreview::refresh() {
  const int index = clip_menu_->currentIndex();
  const PreviewSetup setup = setup_();
  canvas_->setStyle(setup.style, setup.frame);
  fitCanvas();
  if (clips_ == nullptr || index < 0 || static_cast<std::size_t>(index) >= clips_->size()) {
    view_->clear();
    canvas_->setLines({});
    showFrameOf(-1);
    return;
  }
  showFrameOf(index);
  const ClipRecord& clip = (*clips_)[static_cast<std::size_t>(index)];
  view_->setPlainText(QString::fromStdString(preview_title_text(clip, setup.lines)));
  canvas_->setLines(lines_of(compose_title_text(clip, setup.lines)));
  const QList<int> outside = canvas_->linesOutside();
  Q_EMIT fitChanged(outside.isEmpty()
                        ? QString()
                        : tr("Clip %1: line %2 runs outside the title-safe area.")
                              .arg(index + 1)
                              .arg(numbers(outside)));
}

// The dark frame stands until the clip's own arrives.
void TitlePreview::showFrameOf(int index) {
  if (index == framed_) return;
  framed_ = index;
  canvas_->setPicture({});
  Q_EMIT mediaStatus({});
  if (index >= 0) frames_->request(index);
}

void TitlePreview::setMediaFolder(const QString& folder) {
  if (folder == media_folder_) return;
  media_folder_ = folder;
  forgetFrames();
  refresh();
}

void TitlePreview::forgetFrames() {
  frames_->reset(clips_, media_folder_);
  framed_ = -1;
  canvas_->setPicture({});
  Q_EMIT mediaStatus({});
}

bool TitlePreview::framePending() const { return frames_->pending(); }

void TitlePreview::fitCanvas() {
  const bool actual = actual_size_->isChecked();
  room_->setWidgetResizable(!actual);
  if (actual) {
    canvas_->setFixedSize(canvas_->frame().width, canvas_->frame().height);
  } else {
    canvas_->setMinimumSize(160, 90);
    canvas_->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
  }
}

QStringList TitlePreview::checkAllClips() {
  QStringList unfit;
  if (clips_ == nullptr) return unfit;
  const PreviewSetup setup = setup_();
  canvas_->setStyle(setup.style, setup.frame);
  for (std::size_t i = 0; i < clips_->size(); ++i) {
    const TitleLayout placed = canvas_->layout(lines_of(compose_title_text((*clips_)[i], setup.lines)));
    QList<int> outside;
    for (qsizetype line = 0; line < placed.outside.size(); ++line) {
      if (placed.outside[line]) outside << static_cast<int>(line + 1);
    }
    if (!outside.isEmpty()) {
      unfit << tr("%1: line %2").arg(clip_menu_->itemText(static_cast<int>(i)), numbers(outside));
    }
  }
  return unfit;
}

void TitlePreview::keyPressEvent(QKeyEvent* event) {
  const int count = clip_menu_->count();
  int step = 0;
  switch (event->key()) {
    case Qt::Key_Left: case Qt::Key_Up: step = -1; break;
    case Qt::Key_Right: case Qt::Key_Down: step = 1; break;
    case Qt::Key_PageUp: step = -10; break;
    case Qt::Key_PageDown: step = 10; break;
    default: return QWidget::keyPressEvent(event);
  }
  if (count > 0) clip_menu_->setCurrentIndex(std::clamp(clip_menu_->currentIndex() + step, 0, count - 1));
  event->accept();
}

QString TitlePreview::text() const { return view_->toPlainText(); }

}  // namespace quillory::gui
