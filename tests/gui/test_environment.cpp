#include "test_environment.h"

#include <QCoreApplication>
#include <QFile>

namespace quillory::gui_test {

TestEnvironment::TestEnvironment() {
  // Both are read once, at the first use, so they must be set before anything else runs.
  qputenv("XDG_DATA_HOME", QFile::encodeName(data_.path()));
  qputenv("XDG_CONFIG_HOME", QFile::encodeName(config_.path()));
}

void name_application() {
  QCoreApplication::setOrganizationName(QStringLiteral("Ferncroft"));
  QCoreApplication::setApplicationName(QStringLiteral("Quillory Tests"));
}

}  // namespace quillory::gui_test
