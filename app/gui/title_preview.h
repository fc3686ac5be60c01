#pragma once
// A live view of the title text that the current line set-up gives for one chosen clip.

#include <QWidget>

#include "form/controller_fields.h"
#include "form/controls.h"

class QComboBox;
class QPlainTextEdit;

namespace quillory::gui {

class TitlePreview : public QWidget {
  Q_OBJECT

 public:
  // Reads the clips from `fields` and the line set-up from `form`; both must outlive it.
  TitlePreview(const ControllerFields& fields, const Form& form, QWidget* parent = nullptr);

  // Fills the clip menu again after the clip list was replaced.
  void reloadClips();
  // Composes the chosen clip's title text again.
  void refresh();

  QString text() const;
  QComboBox* clipMenu() const { return clip_menu_; }

 private:
  const ControllerFields& fields_;
  const Form& form_;
  QComboBox* clip_menu_;
  QPlainTextEdit* view_;
};

}  // namespace quillory::gui
