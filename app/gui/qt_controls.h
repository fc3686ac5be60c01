#pragma once
// The form's controls over Qt widgets, so that the core reads and updates the window itself.
// Each adapter only refers to its widget; the window owns the widgets and outlives them.

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <array>
#include <cstdint>

#include "form/controls.h"

namespace quillory::gui {

class QtTextField final : public TextField {
 public:
  explicit QtTextField(const QLineEdit& edit) : edit_(edit) {}
  std::string stringValue() const override;

 private:
  const QLineEdit& edit_;
};

class QtPopUpMenu final : public PopUpMenu {
 public:
  explicit QtPopUpMenu(const QComboBox& menu) : menu_(menu) {}
  std::optional<std::string> titleOfSelectedItem() const override;

 private:
  const QComboBox& menu_;
};

class QtCheckbox final : public Checkbox {
 public:
  explicit QtCheckbox(const QCheckBox& box) : box_(box) {}
  int state() const override;

 private:
  const QCheckBox& box_;
};

class QtIconView final : public IconView {
 public:
  explicit QtIconView(QLabel& icon) : icon_(icon) {}
  void setHidden(bool hidden) override;
  void setToolTip(const std::string& text) override;
  void setNeedsDisplay(bool needs_display) override;

  // The core shows a document by giving the icon that document's path as tool tip, and does
  // so only for an accepted open; the window counts these to tell an accepted open (even of
  // the same file again) from a refused one.
  std::uint64_t documents_shown() const { return documents_shown_; }

 private:
  QLabel& icon_;
  std::uint64_t documents_shown_ = 0;
};

class QtTextLabel final : public TextLabel {
 public:
  explicit QtTextLabel(QLabel& label) : label_(label) {}
  void setStringValue(const std::string& text) override;
  void setNeedsDisplay(bool needs_display) override;

 private:
  QLabel& label_;
};

// The widgets behind the fifteen named controls.
struct QtFormWidgets {
  QComboBox* templatePopup = nullptr;
  QLineEdit* nameField = nullptr;
  std::array<QLineEdit*, 5> lineLabels{};
  std::array<QComboBox*, 5> linePopups{};
  QCheckBox* tcrCheckbox = nullptr;
  QLabel* xmlIcon = nullptr;
  QLabel* xmlFileName = nullptr;
};

// The adapters for one window, with the form that the controller is given.
class QtForm {
 public:
  explicit QtForm(const QtFormWidgets& widgets);
  QtForm(const QtForm&) = delete;
  QtForm& operator=(const QtForm&) = delete;

  Form form();

  QtPopUpMenu templatePopup;
  QtTextField nameField;
  std::array<QtTextField, 5> lineLabels;
  std::array<QtPopUpMenu, 5> linePopups;
  QtCheckbox tcrCheckbox;
  QtIconView xmlIcon;
  QtTextLabel xmlFileName;
};

}  // namespace quillory::gui
