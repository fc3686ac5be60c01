#pragma once
// The preview of one chosen clip's title: drawn over the frame as it will look (TitleCanvas),
// and as text that can be selected and copied. Arrow keys and Page Up/Down step through the
// clips; "Check all clips" finds every clip whose lines run outside title-safe.

#include <QWidget>
#include <functional>
#include <vector>

#include "titles/compose_title_text.h"
#include "titles/title_style.h"
#include "titles/video_format.h"

class QComboBox;
class QPlainTextEdit;
class QPushButton;

namespace quillory::gui {

class TitleCanvas;

// What the preview draws with: the line set-up, and the chosen template's look and frame.
struct PreviewSetup {
  LineSettings lines;
  TitleStyle style;
  FrameSize frame;
};

class TitlePreview : public QWidget {
  Q_OBJECT

 public:
  // `setup` gives the set-up each time the preview is drawn.
  explicit TitlePreview(std::function<PreviewSetup()> setup, QWidget* parent = nullptr);

  // Offers the clips of a newly opened document; `clips` must outlive the next call. Shots
  // show where they start in a sequence of `timebase` frames a second.
  void setClips(const std::vector<ClipRecord>* clips, int timebase = 30);
  // Draws the chosen clip's title again.
  void refresh();
  // "N. NAME: line 2, 5" for every clip with a line outside title-safe.
  QStringList checkAllClips();

  QString text() const;
  QComboBox* clipMenu() const { return clip_menu_; }
  TitleCanvas* canvas() const { return canvas_; }

 Q_SIGNALS:
  // What the status line should say of the chosen title's fit.
  void fitChanged(const QString& message);
  // The result of checkAllClips(), as the button asked for it.
  void clipsChecked(const QStringList& unfit);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  static QStringList lines_of(const std::string& title);

  std::function<PreviewSetup()> setup_;
  const std::vector<ClipRecord>* clips_ = nullptr;
  QComboBox* clip_menu_;
  TitleCanvas* canvas_;
  QPlainTextEdit* view_;
  QPushButton* check_;
};

}  // namespace quillory::gui
