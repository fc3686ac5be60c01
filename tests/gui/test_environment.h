#pragma once
// Keeps the window tests away from the user's own files: output and settings go to temporary
// folders that live as long as this object. Create it before the QApplication.

#include <QTemporaryDir>

namespace quillory::gui_test {

class TestEnvironment {
 public:
  TestEnvironment();
  TestEnvironment(const TestEnvironment&) = delete;
  TestEnvironment& operator=(const TestEnvironment&) = delete;

  bool isValid() const { return data_.isValid() && config_.isValid(); }
  QString dataFolder() const { return data_.path(); }

 private:
  QTemporaryDir data_;
  QTemporaryDir config_;
};

// Names the application as the window's settings expect; call once the QApplication exists.
void name_application();

}  // namespace quillory::gui_test
