#pragma once
// The controls that say what a run creates: the title template, the sequence's rate and name,
// the five title lines, the Timecode Reader and import-safe output. The panel owns them and
// hands out what they hold as the form.

#include <QWidget>
#include <array>

#include "form/controller.h"
#include "form_settings.h"

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace quillory::gui {

class FormPanel : public QWidget {
  Q_OBJECT

 public:
  explicit FormPanel(QWidget* parent = nullptr);

  // What the panel's controls hold; the document bar's checkbox is the window's to add.
  Form form() const;

  // Offers the sources, templates and rates of the document the controller opened, keeping
  // the chosen ones where it still has them, and names the sequence after it: the document,
  // or the sequence whose shots are titled, whose rate the titles then take.
  void showDocument(const Controller& controller);
  // Selects under "Source:" what the controller's open document was read from: after a
  // failed open, what the controller still holds.
  void showSource(const Controller& controller);
  QComboBox* sourceMenu() const { return source_menu_; }

  void restore(const FormSettings& values);
  void store(FormSettings& values) const;

  // The controls in reading order, for the window's tab chain.
  QList<QWidget*> controls() const;

 Q_SIGNALS:
  // A label, a line's choice or the template changed: the title may read or look differently.
  void linesChanged();

 private:
  QComboBox* source_menu_;
  QComboBox* template_menu_;
  QComboBox* rate_menu_;
  QLineEdit* name_field_;
  std::array<QLineEdit*, 5> labels_{};
  std::array<QComboBox*, 5> choices_{};
  QCheckBox* timecode_reader_;
  QCheckBox* import_safe_;
};

}  // namespace quillory::gui
