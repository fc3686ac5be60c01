#pragma once
// The open document: the Open button, how documents are read (strictly, or accepting
// incomplete exports), and the icon and file name that show which document the window holds
// (the icon's tool tip gives its whole path). The icon is hidden until a document opens.

#include <QWidget>

#include "form/form.h"

class QCheckBox;
class QLabel;
class QPushButton;

namespace quillory::gui {

class DocumentBar : public QWidget {
  Q_OBJECT

 public:
  explicit DocumentBar(QWidget* parent = nullptr);

  void showDocument(const FileDisplay& display);
  QPushButton* openButton() const { return open_; }
  QCheckBox* tolerantBox() const { return tolerant_; }
  bool tolerant() const;
  // Follows an error that accepting incomplete exports would take.
  QString tolerantHint() const;

 private:
  QPushButton* open_;
  QCheckBox* tolerant_;
  QLabel* icon_;
  QLabel* file_name_;
};

}  // namespace quillory::gui
