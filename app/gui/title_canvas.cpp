#include "title_canvas.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace quillory::gui {
namespace {

QColor qt_colour(const Colour& colour) {
  return QColor(std::clamp(colour.red, 0, 255), std::clamp(colour.green, 0, 255),
                std::clamp(colour.blue, 0, 255), std::clamp(colour.alpha, 0, 255));
}

QRectF inset(const QRectF& frame, double share) {
  const double dx = frame.width() * (1 - share) / 2, dy = frame.height() * (1 - share) / 2;
  return frame.adjusted(dx, dy, -dx, -dy);
}

}  // namespace

TitleCanvas::TitleCanvas(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("previewCanvas"));
  setMinimumSize(160, 90);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  setStyle(TitleStyle{}, FrameSize{});
}

void TitleCanvas::setStyle(const TitleStyle& style, FrameSize frame) {
  style_ = style;
  frame_ = frame;
  font_ = QFont(QString::fromStdString(style.font));
  font_.setPixelSize(std::max(1, static_cast<int>(style.size + 0.5)));
  font_.setBold(style.bold);
  font_.setItalic(style.italic);
  const QString drawn = QFontInfo(font_).family();
  setToolTip(drawn.compare(font_.family(), Qt::CaseInsensitive) == 0
                 ? QString()
                 : tr("“%1” is not installed here: the title is drawn with “%2”.")
                       .arg(font_.family(), drawn));
  updateGeometry();
  update();
}

void TitleCanvas::setLines(const QStringList& lines) {
  lines_ = lines;
  update();
}

void TitleCanvas::setPicture(const QImage& picture) {
  picture_ = picture;
  update();
}

TitleLayout TitleCanvas::layout(const QStringList& lines) const {
  TitleLayout result;
  result.frame = QRectF(0, 0, frame_.width, frame_.height);
  result.title_safe = inset(result.frame, 0.8);
  result.action_safe = inset(result.frame, 0.9);
  const QFontMetricsF metrics(font_);
  const double line_height = metrics.lineSpacing() + style_.size * style_.leading / 100;
  double widest = 0;
  for (const auto& line : lines) widest = std::max(widest, metrics.horizontalAdvance(line));
  const QPointF centre = result.frame.center() + QPointF(style_.origin_x * frame_.width,
                                                         style_.origin_y * frame_.height);
  double top = centre.y() - line_height * static_cast<double>(lines.size()) / 2;
  for (const auto& line : lines) {
    const double width = metrics.horizontalAdvance(line);
    double left = centre.x() - width / 2;
    if (style_.alignment == TextAlignment::Left) left = centre.x() - widest / 2;
    if (style_.alignment == TextAlignment::Right) left = centre.x() + widest / 2 - width;
    const QRectF box(left, top, width, metrics.height());
    result.lines << box;
    result.outside << (!line.trimmed().isEmpty() && !result.title_safe.contains(box));
    top += line_height;
  }
  return result;
}

QList<int> TitleCanvas::linesOutside() const {
  const TitleLayout placed = layout(lines_);
  QList<int> outside;
  for (qsizetype i = 0; i < placed.outside.size(); ++i) {
    if (placed.outside[i]) outside << static_cast<int>(i + 1);
  }
  return outside;
}

int TitleCanvas::heightForWidth(int width) const {
  return frame_.width > 0 ? width * frame_.height / frame_.width : width * 9 / 16;
}

QImage TitleCanvas::render(int width) const {
  QImage image(width, heightForWidth(width), QImage::Format_ARGB32);
  image.fill(Qt::black);
  QPainter painter(&image);
  draw(painter, QRectF(image.rect()));
  return image;
}

void TitleCanvas::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().window());
  draw(painter, QRectF(rect()));
}

// Draws the frame into the largest rectangle of its aspect centred in `target`.
void TitleCanvas::draw(QPainter& painter, const QRectF& target) const {
  const double scale = std::min(target.width() / frame_.width, target.height() / frame_.height);
  const QPointF origin = target.center() - QPointF(frame_.width * scale, frame_.height * scale) / 2;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(origin);
  painter.scale(scale, scale);
  const TitleLayout placed = layout(lines_);
  if (picture_.isNull()) {
    painter.fillRect(placed.frame, QColor(48, 48, 48));
  } else {
    painter.drawImage(placed.frame, picture_);
  }
  QPen guide(QColor(110, 110, 110), 0, Qt::DashLine);
  painter.setPen(guide);
  painter.drawRect(placed.action_safe);
  painter.drawRect(placed.title_safe);
  const QFontMetricsF metrics(font_);
  for (qsizetype i = 0; i < lines_.size(); ++i) {
    const QRectF& box = placed.lines[i];
    QPainterPath text;
    text.addText(box.left(), box.top() + metrics.ascent(), font_, lines_[i]);
    if (style_.outline_width > 0) {
      painter.strokePath(text, QPen(qt_colour(style_.outline_colour), style_.outline_width * 2,
                                    Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    painter.fillPath(text, qt_colour(style_.colour));
    if (placed.outside[i]) {
      painter.setPen(QPen(Qt::red, 3 / scale));
      painter.drawRect(box);
    }
  }
  painter.restore();
}

}  // namespace quillory::gui
