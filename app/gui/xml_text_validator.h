#pragma once
// Keeps out of a field any text that no XML document may hold (a control character pasted in,
// say): what the field holds goes into the output as it stands.

#include <QValidator>

namespace quillory::gui {

class XmlTextValidator : public QValidator {
 public:
  using QValidator::QValidator;
  State validate(QString& text, int& position) const override;
};

}  // namespace quillory::gui
