#pragma once
// A live view of the title text that the current line set-up gives for one chosen clip.

#include <QWidget>
#include <functional>
#include <vector>

#include "titles/compose_title_text.h"

class QComboBox;
class QPlainTextEdit;

namespace quillory::gui {

class TitlePreview : public QWidget {
  Q_OBJECT

 public:
  // `lines` gives the line set-up each time the preview is composed.
  explicit TitlePreview(std::function<LineSettings()> lines, QWidget* parent = nullptr);

  // Offers the clips of a newly opened document; `clips` must outlive the next call. Shots
  // show where they start in a sequence of `timebase` frames a second.
  void setClips(const std::vector<ClipRecord>* clips, int timebase = 30);
  // Composes the chosen clip's title text again.
  void refresh();

  QString text() const;
  QComboBox* clipMenu() const { return clip_menu_; }

 private:
  std::function<LineSettings()> lines_;
  const std::vector<ClipRecord>* clips_ = nullptr;
  QComboBox* clip_menu_;
  QPlainTextEdit* view_;
};

}  // namespace quillory::gui
