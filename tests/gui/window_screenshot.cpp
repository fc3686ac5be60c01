// Opens the example document in the window, checks that the controls are laid out without
// being squeezed or overlapping (at whatever scale QT_SCALE_FACTOR sets), and writes a picture
// of the window to the path given as the only argument.

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QTest>
#include <cstdio>

#include "main_window.h"
#include "startup/startup.h"
#include "test_environment.h"

namespace {

// Every visible control gets at least its minimum size, lies inside the window, and overlaps
// no other control.
bool layout_holds(const QWidget& window) {
  QList<QWidget*> controls;
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    const bool is_control = qobject_cast<QLineEdit*>(widget) || qobject_cast<QComboBox*>(widget) ||
                            qobject_cast<QAbstractButton*>(widget) || qobject_cast<QLabel*>(widget);
    if (is_control && widget->isVisible() && !widget->objectName().startsWith("qt_")) {
      controls << widget;
    }
  }
  bool holds = true;
  const QRect inside = window.rect();
  for (QWidget* widget : controls) {
    const QRect area(widget->mapTo(&window, QPoint(0, 0)), widget->size());
    const QSize least = widget->minimumSizeHint();
    if (!inside.contains(area)) {
      std::fprintf(stderr, "%s lies outside the window\n", qPrintable(widget->objectName()));
      holds = false;
    }
    if (widget->sizePolicy().horizontalPolicy() != QSizePolicy::Ignored &&
        (area.width() < least.width() || area.height() < least.height())) {
      std::fprintf(stderr, "%s (%s) is squeezed: %dx%d, needs %dx%d\n",
                   qPrintable(widget->objectName()), widget->metaObject()->className(),
                   area.width(), area.height(), least.width(), least.height());
      holds = false;
    }
    for (QWidget* other : controls) {
      if (other == widget || widget->isAncestorOf(other) || other->isAncestorOf(widget)) continue;
      const QRect other_area(other->mapTo(&window, QPoint(0, 0)), other->size());
      if (other < widget && area.intersects(other_area)) {
        std::fprintf(stderr, "%s overlaps %s\n", qPrintable(widget->objectName()),
                     qPrintable(other->objectName()));
        holds = false;
      }
    }
  }
  return holds;
}

}  // namespace

int main(int argc, char** argv) {
  const quillory::gui_test::TestEnvironment environment;
  QApplication app(argc, argv);
  quillory::gui_test::name_application();
  if (argc != 2 || !environment.isValid()) {
    std::fprintf(stderr, "usage: quillory_gui_screenshot OUTPUT.png\n");
    return 2;
  }

  quillory::gui::MainWindow window(quillory::start_up());
  window.show();
  if (!QTest::qWaitForWindowExposed(&window)) return 1;
  if (!window.openDocument(QStringLiteral(QUILLORY_EXAMPLE))) return 1;
  window.findChild<QLineEdit*>(QStringLiteral("line1Label"))->setText(QStringLiteral("Clip:"));
  if (!window.createTitles()) return 1;
  QApplication::processEvents();

  bool passed = layout_holds(window);
  // The smallest the window may be made must still hold the layout.
  window.resize(window.minimumSizeHint());
  QApplication::processEvents();
  if (!layout_holds(window)) {
    std::fprintf(stderr, "at the minimum size, the layout breaks\n");
    passed = false;
  }
  window.resize(window.sizeHint());
  QApplication::processEvents();

  if (!window.grab().save(QString::fromLocal8Bit(argv[1]))) {
    std::fprintf(stderr, "cannot write %s\n", argv[1]);
    return 1;
  }
  std::printf("wrote %s\n", argv[1]);
  return passed ? 0 : 1;
}
