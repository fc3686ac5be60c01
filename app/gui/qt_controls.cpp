#include "qt_controls.h"

namespace quillory::gui {

std::string QtTextField::stringValue() const {
  return edit_.text().toStdString();
}

std::optional<std::string> QtPopUpMenu::titleOfSelectedItem() const {
  if (menu_.currentIndex() < 0) return std::nullopt;
  return menu_.currentText().toStdString();
}

int QtCheckbox::state() const {
  switch (box_.checkState()) {
    case Qt::Checked:
      return 1;
    case Qt::PartiallyChecked:
      return -1;
    case Qt::Unchecked:
      break;
  }
  return 0;
}

void QtIconView::setHidden(bool hidden) {
  icon_.setHidden(hidden);
}

void QtIconView::setToolTip(const std::string& text) {
  icon_.setToolTip(QString::fromStdString(text));
  ++documents_shown_;
}

void QtIconView::setNeedsDisplay(bool needs_display) {
  if (needs_display) icon_.update();
}

void QtTextLabel::setStringValue(const std::string& text) {
  label_.setText(QString::fromStdString(text));
}

void QtTextLabel::setNeedsDisplay(bool needs_display) {
  if (needs_display) label_.update();
}

QtForm::QtForm(const QtFormWidgets& w)
    : templatePopup(*w.templatePopup),
      nameField(*w.nameField),
      lineLabels{QtTextField(*w.lineLabels[0]), QtTextField(*w.lineLabels[1]),
                 QtTextField(*w.lineLabels[2]), QtTextField(*w.lineLabels[3]),
                 QtTextField(*w.lineLabels[4])},
      linePopups{QtPopUpMenu(*w.linePopups[0]), QtPopUpMenu(*w.linePopups[1]),
                 QtPopUpMenu(*w.linePopups[2]), QtPopUpMenu(*w.linePopups[3]),
                 QtPopUpMenu(*w.linePopups[4])},
      tcrCheckbox(*w.tcrCheckbox),
      xmlIcon(*w.xmlIcon),
      xmlFileName(*w.xmlFileName) {}

Form QtForm::form() {
  return Form{templatePopup, nameField,     lineLabels[0], lineLabels[1], lineLabels[2],
              lineLabels[3], lineLabels[4], linePopups[0], linePopups[1], linePopups[2],
              linePopups[3], linePopups[4], tcrCheckbox,   xmlIcon,       xmlFileName};
}

}  // namespace quillory::gui
