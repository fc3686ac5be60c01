#include "xml_text_validator.h"

#include "xml/xml_text.h"

namespace quillory::gui {

QValidator::State XmlTextValidator::validate(QString& text, int&) const {
  return xml::why_not_xml_text(text.toStdString()) ? Invalid : Acceptable;
}

}  // namespace quillory::gui
