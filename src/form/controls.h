#pragma once
// The window controls that the controller's operations read and update, as plain interfaces
// that a host may implement over its toolkit's widgets (the tests do over plain values). The
// operation names are those of the controls the system was designed against.

#include <optional>
#include <string>

namespace quillory {

class TextField {
 public:
  virtual ~TextField() = default;
  virtual std::string stringValue() const = 0;
};

class PopUpMenu {
 public:
  virtual ~PopUpMenu() = default;
  // The selected item's title exactly as shown; none when nothing is selected.
  virtual std::optional<std::string> titleOfSelectedItem() const = 0;
};

class Checkbox {
 public:
  virtual ~Checkbox() = default;
  // 1 on, 0 off, -1 mixed.
  virtual int state() const = 0;
};

class IconView {
 public:
  virtual ~IconView() = default;
  virtual void setHidden(bool hidden) = 0;
  virtual void setToolTip(const std::string& text) = 0;
  virtual void setNeedsDisplay(bool needs_display) = 0;
};

class TextLabel {
 public:
  virtual ~TextLabel() = default;
  virtual void setStringValue(const std::string& text) = 0;
  virtual void setNeedsDisplay(bool needs_display) = 0;
};

// The controls of the window, by name. The host owns them; the form only refers to them.
struct Form {
  PopUpMenu& templatePopup;
  TextField& nameField;
  TextField& line1Label;
  TextField& line2Label;
  TextField& line3Label;
  TextField& line4Label;
  TextField& line5Label;
  PopUpMenu& line1Popup;
  PopUpMenu& line2Popup;
  PopUpMenu& line3Popup;
  PopUpMenu& line4Popup;
  PopUpMenu& line5Popup;
  Checkbox& tcrCheckbox;
  Checkbox& tolerantCheckbox;    // "Accept incomplete exports"
  Checkbox& importSafeCheckbox;  // "Import-safe output"
  IconView& xmlIcon;
  TextLabel& xmlFileName;
};

}  // namespace quillory
