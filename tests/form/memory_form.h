#pragma once
// Controls that simply hold their values: the form of the command line and of tests.

#include <array>

#include "form/controls.h"

namespace quillory {

class MemoryTextField : public TextField {
 public:
  std::string stringValue() const override { return value; }
  std::string value;
};

class MemoryPopUpMenu : public PopUpMenu {
 public:
  std::optional<std::string> titleOfSelectedItem() const override { return selected; }
  std::optional<std::string> selected;
};

class MemoryCheckbox : public Checkbox {
 public:
  int state() const override { return value; }
  int value = 0;
};

class MemoryIconView : public IconView {
 public:
  void setHidden(bool value) override { hidden = value; }
  void setToolTip(const std::string& text) override { tool_tip = text; }
  void setNeedsDisplay(bool value) override { needs_display = value; }
  bool hidden = true;
  std::string tool_tip;
  bool needs_display = false;
};

class MemoryTextLabel : public TextLabel {
 public:
  void setStringValue(const std::string& text) override { value = text; }
  void setNeedsDisplay(bool value) override { needs_display = value; }
  std::string value;
  bool needs_display = false;
};

class MemoryForm {
 public:
  MemoryForm() = default;
  MemoryForm(const MemoryForm&) = delete;
  MemoryForm& operator=(const MemoryForm&) = delete;

  Form form() {
    return Form{templatePopup, nameField,  line_labels[0], line_labels[1], line_labels[2],
                line_labels[3], line_labels[4], line_popups[0], line_popups[1], line_popups[2],
                line_popups[3], line_popups[4], tcrCheckbox,    xmlIcon,        xmlFileName};
  }

  MemoryPopUpMenu templatePopup;
  MemoryTextField nameField;
  std::array<MemoryTextField, 5> line_labels;
  std::array<MemoryPopUpMenu, 5> line_popups;
  MemoryCheckbox tcrCheckbox;
  MemoryIconView xmlIcon;
  MemoryTextLabel xmlFileName;
};

}  // namespace quillory
