#pragma once
// A title drawn as the template describes it, over the clip's own picture where it is had (else
// a dark frame) of the sequence's size with the action-safe (90%) and title-safe (80%) guides,
// scaled to the widget with the frame's aspect kept. A line that runs outside title-safe is
// outlined in red.
//
// The drawing approximates Final Cut Pro's Text and Outline Text generators: Qt's text
// rendering stands in for theirs, a font that is not installed is drawn with Qt's nearest
// match, the text block is centred on its origin (an offset from the frame's centre in
// fractions of the frame), leading adds a percentage of the font size between lines, and
// tracking, kerning, aspect and motion parameters are left out.

#include <QFont>
#include <QImage>
#include <QRectF>
#include <QStringList>
#include <QWidget>

#include "titles/title_style.h"
#include "titles/video_format.h"

namespace quillory::gui {

// Where each line of a title falls, in pixels of the frame.
struct TitleLayout {
  QRectF frame, title_safe, action_safe;
  QList<QRectF> lines;
  QList<bool> outside;  // the line runs outside title-safe
};

class TitleCanvas : public QWidget {
  Q_OBJECT

 public:
  explicit TitleCanvas(QWidget* parent = nullptr);

  void setStyle(const TitleStyle& style, FrameSize frame);
  void setLines(const QStringList& lines);
  // The picture under the title, stretched to the frame; a null image gives the dark frame.
  void setPicture(const QImage& picture);
  const QImage& picture() const { return picture_; }

  FrameSize frame() const { return frame_; }
  // The font the lines are drawn with, and where they fall.
  const QFont& font() const { return font_; }
  TitleLayout layout(const QStringList& lines) const;
  // The numbers (from 1) of the lines of the current title outside title-safe.
  QList<int> linesOutside() const;
  // The whole frame, drawn at `width` pixels wide.
  QImage render(int width) const;

  QSize sizeHint() const override { return {512, heightForWidth(512)}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void draw(QPainter& painter, const QRectF& target) const;

  TitleStyle style_;
  FrameSize frame_;
  QFont font_;
  QStringList lines_;
  QImage picture_;
};

}  // namespace quillory::gui
