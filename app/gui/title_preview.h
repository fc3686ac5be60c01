#pragma once
// The preview of one chosen clip's title: drawn as it will look over the clip's frame where the
// media can be found (TitleCanvas, fit to the room or at 100%), and as text that can be
// selected and copied. Arrow keys and Page Up/Down step through the clips; "Check all clips"
// finds every clip whose lines run outside title-safe.

#include <QWidget>
#include <functional>
#include <vector>

#include "startup/frame_rate.h"
#include "titles/compose_title_text.h"
#include "titles/title_style.h"
#include "titles/video_format.h"

class QAction;
class QComboBox;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;

namespace quillory::gui {

class FrameLoader;
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
  // `rate` is the sequence's, which a shot's place counts.
  void setClips(const std::vector<ClipRecord>* clips, const FrameRate& rate = {});
  // Draws the chosen clip's title again.
  void refresh();
  // "N. NAME: line 2, 5" for every clip with a line outside title-safe.
  QStringList checkAllClips();

  // Where media are looked for by name when not where the document says; "" for nowhere.
  void setMediaFolder(const QString& folder);
  QString mediaFolder() const { return media_folder_; }
  // Whether the chosen clip's frame is still being decoded.
  bool framePending() const;
  // Checked: the frame at 100%, scrolling; else fit to the room.
  QAction* actualSizeAction() const { return actual_size_; }

  QString text() const;
  QComboBox* clipMenu() const { return clip_menu_; }
  TitleCanvas* canvas() const { return canvas_; }

 Q_SIGNALS:
  // What the status line should say of the chosen title's fit.
  void fitChanged(const QString& message);
  // The result of checkAllClips(), as the button asked for it.
  void clipsChecked(const QStringList& unfit);
  // Why the chosen clip's frame is not drawn ("media not found: A001C003.mov"); "" once it is.
  void mediaStatus(const QString& why);
  // The chosen clip's frame arrived or could not be had.
  void frameSettled();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  static QStringList lines_of(const std::string& title);
  void showFrameOf(int index);
  // After a new open or another media folder, every frame is found and decoded again.
  void forgetFrames();
  void fitCanvas();

  std::function<PreviewSetup()> setup_;
  const std::vector<ClipRecord>* clips_ = nullptr;
  QComboBox* clip_menu_;
  TitleCanvas* canvas_;
  QScrollArea* room_;
  QAction* actual_size_;
  FrameLoader* frames_;
  QString media_folder_;
  int framed_ = -1;  // the clip whose frame the canvas shows or waits for
  QPlainTextEdit* view_;
  QPushButton* check_;
};

}  // namespace quillory::gui
