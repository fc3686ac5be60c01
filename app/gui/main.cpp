// quillory-gui: the Quillory window.

#include <QApplication>
#include <QEventLoop>
#include <QIcon>
#include <QMessageBox>
#include <QStyle>
#include <exception>

#include "main_window.h"
#include "title_preview.h"
#include "startup/startup.h"
#include "titles/replace_file.h"

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  QApplication::setOrganizationName(QStringLiteral("Ferncroft"));
  QApplication::setApplicationName(QStringLiteral("Quillory"));
  QApplication::setApplicationVersion(QStringLiteral(QUILLORY_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("quillory"));
  // The icon installed with the program, where it is installed.
  QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("quillory"),
                                               app.style()->standardIcon(QStyle::SP_FileIcon)));
  quillory::remove_unfinished_replacement_when_stopped();

  quillory::OutputPaths paths;
  try {
    paths = quillory::start_up();
  } catch (const std::exception& failure) {
    QMessageBox::critical(nullptr, QObject::tr("Quillory"),
                          QObject::tr("Quillory cannot prepare its data folder.\n\n%1")
                              .arg(QString::fromLocal8Bit(failure.what())));
    return 1;
  }

  quillory::gui::MainWindow window(std::move(paths));
  window.show();
  // A document given on the command line (as the desktop entry passes it) opens at once.
  const QStringList arguments = QApplication::arguments();
  if (arguments.size() > 1) window.openDocument(arguments.at(1));
  // scripts/screenshot draws the README's picture of the window this way.
  const QString picture = qEnvironmentVariable("QUILLORY_GUI_SCREENSHOT");
  if (!picture.isEmpty()) {
    window.resize(1000, 700);
    // What a person sees a moment after opening: the first clip's frame, or why there is none.
    auto* preview = window.findChild<quillory::gui::TitlePreview*>();
    if (preview != nullptr && preview->framePending()) {
      QEventLoop settled;
      QObject::connect(preview, &quillory::gui::TitlePreview::frameSettled, &settled, &QEventLoop::quit);
      settled.exec();
    }
    QCoreApplication::sendPostedEvents();  // the status line laid out for what it now says
    return window.grab().save(picture) ? 0 : 1;
  }
  return QApplication::exec();
}
