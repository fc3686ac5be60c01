// Drives the real window: its menus, fields and buttons, and compares what it writes with what
// the command line writes for the same settings.

#include "main_window.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <memory>

#include "title_preview.h"
#include "xml_tree.h"

using quillory::gui::MainWindow;

namespace {

const QString kExample = QStringLiteral(QUILLORY_EXAMPLE);

QByteArray read_all(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write_all(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

// Closes the error dialogs that a step left open; returns how many there were.
int close_dialogs(QWidget* window) {
  int count = 0;
  for (QMessageBox* box : window->findChildren<QMessageBox*>()) count += box->close() ? 1 : 0;
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return count;
}

}  // namespace

class MainWindowTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<MainWindow> newWindow() {
    auto window = std::make_unique<MainWindow>(quillory::start_up());
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get())) qWarning("the window was never exposed");
    return window;
  }

  template <class Widget>
  static Widget* control(const MainWindow& window, const QString& name) {
    auto* widget = window.findChild<Widget*>(name);
    if (widget == nullptr) qFatal("the window has no %s", qPrintable(name));
    return widget;
  }
  static QLineEdit* label(const MainWindow& window, int line) {
    return control<QLineEdit>(window, QStringLiteral("line%1Label").arg(line));
  }
  static QComboBox* choice(const MainWindow& window, int line) {
    return control<QComboBox>(window, QStringLiteral("line%1Popup").arg(line));
  }

  static void choose(QComboBox* menu, const QString& title) {
    const int index = menu->findText(title, Qt::MatchExactly | Qt::MatchCaseSensitive);
    QVERIFY2(index >= 0, qPrintable(QStringLiteral("no item \"%1\"").arg(title)));
    menu->setCurrentIndex(index);
  }

  static void setLines(const MainWindow& window, const QStringList& labels,
                       const QStringList& lines) {
    for (int line = 1; line <= 5; ++line) {
      label(window, line)->setText(labels[line - 1]);
      choose(choice(window, line), lines[line - 1]);
    }
  }

 private Q_SLOTS:
  void initTestCase() { QVERIFY2(QFile::exists(kExample), qPrintable(kExample + " is missing")); }

  void init() {
    QSettings().clear();
    QFile::remove(QString::fromStdString(*quillory::start_up().TEMP_XML_FILE));
  }

  void createTitlesWritesWhatTheCommandLineWrites() {
    const auto window = newWindow();
    QVERIFY(!control<QPushButton>(*window, "createButton")->isEnabled());
    QVERIFY(window->openDocument(kExample));
    QCOMPARE(control<QLabel>(*window, "xmlIcon")->toolTip(), kExample);
    QCOMPARE(control<QLineEdit>(*window, "nameField")->text(), QStringLiteral("dailies"));

    auto* templates = control<QComboBox>(*window, "templatePopup");
    auto* rates = control<QComboBox>(*window, "ratePopup");
    QCOMPARE(templates->itemText(0), QStringLiteral("Default"));
    templates->setCurrentIndex(templates->count() - 1);
    rates->setCurrentIndex(rates->count() - 1);
    control<QLineEdit>(*window, "nameField")->setText(QStringLiteral("Day 1 & titles"));
    const QStringList labels{"Clip:", "", "Note <1>", "TC", "Shot on"};
    const QStringList lines{"Clip Name", " ", "Log Note", "First Frame Timecode",
                            "Date (3/13/2010), Time"};
    setLines(*window, labels, lines);
    control<QCheckBox>(*window, "tcrCheckbox")->setChecked(true);

    QTest::mouseClick(control<QPushButton>(*window, "createButton"), Qt::LeftButton);
    QCOMPARE(close_dialogs(window.get()), 0);
    const QString written = window->outputPath();
    QCOMPARE(control<QLabel>(*window, "outputPath")->toolTip(), written);

    QTemporaryDir folder;
    const QString expected = folder.filePath(QStringLiteral("cli.xml"));
    QStringList arguments{"--template", templates->currentText(),
                          "--name",     QStringLiteral("Day 1 & titles"),
                          "--rate",     rates->currentText(),
                          "--tcr",      "--quiet",
                          "--output",   expected};
    for (int line = 1; line <= 5; ++line) {
      arguments << QStringLiteral("--label%1").arg(line) << labels[line - 1]
                << QStringLiteral("--line%1").arg(line) << lines[line - 1];
    }
    QProcess cli;
    cli.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    cli.start(QStringLiteral(QUILLORY_CLI), arguments << kExample);
    QVERIFY(cli.waitForFinished(120000));
    QCOMPARE(cli.exitCode(), 0);
    const std::string difference =
        quillory::test::tree_difference(read_all(expected).toStdString(), read_all(written).toStdString());
    QVERIFY2(difference.empty(), difference.c_str());

    // A copy replaces an older file whole.
    const QString copy = folder.filePath(QStringLiteral("copy.xml"));
    QVERIFY(write_all(copy, "older file"));
    QVERIFY(window->saveOutputCopyTo(copy));
    QCOMPARE(read_all(copy), read_all(written));
  }

  void refusalsKeepThePreviousStateAndFile() {
    const auto window = newWindow();
    QVERIFY(window->openDocument(kExample));
    QVERIFY(window->createTitles());
    const QByteArray before = read_all(window->outputPath());
    auto* templates = control<QComboBox>(*window, "templatePopup");
    templates->setCurrentIndex(templates->count() - 1);
    const int template_count = templates->count();

    QTemporaryDir folder;
    const QString other = folder.filePath(QStringLiteral("project.xml"));
    QVERIFY(write_all(other, "<?xml version=\"1.0\"?>\n<project><clip/></project>\n"));
    QVERIFY(!window->openDocument(other));
    QCOMPARE(close_dialogs(window.get()), 1);
    QCOMPARE(control<QLabel>(*window, "xmlFileName")->text(), QStringLiteral("dailies.xml"));
    QCOMPARE(templates->count(), template_count);
    QCOMPARE(templates->currentIndex(), template_count - 1);

    // A clip whose video item has no start opens, but no sequence can be built from it.
    const QByteArray clip =
        "<clip id=\"c1\"><name>c1</name><duration>10</duration><rate><ntsc>FALSE</ntsc>"
        "<timebase>25</timebase></rate><logginginfo><scene>1</scene><shottake>2</shottake>"
        "<lognote/></logginginfo><media><video><track><clipitem id=\"c1-v\"><name>c1</name>"
        "<file id=\"f1\"><name>c1.mov</name></file></clipitem></track></video></media></clip>";
    const QString unplaceable = folder.filePath(QStringLiteral("unplaceable.xml"));
    QVERIFY(write_all(unplaceable, "<xmeml version=\"4\">" + clip + "</xmeml>"));
    QVERIFY(window->openDocument(unplaceable));
    QVERIFY(!window->createTitles());
    QCOMPARE(close_dialogs(window.get()), 1);
    QCOMPARE(read_all(window->outputPath()), before);
    QVERIFY(control<QPushButton>(*window, "createButton")->isEnabled());

    // A document that breaks off after its first clip shows what was read, and makes nothing.
    QByteArray second = clip;
    second.replace("FALSE", "maybe");
    const QString broken = folder.filePath(QStringLiteral("broken.xml"));
    QVERIFY(write_all(broken, "<xmeml version=\"4\">" + clip + second + "</xmeml>"));
    QVERIFY(!window->openDocument(broken));
    QCOMPARE(close_dialogs(window.get()), 1);
    QCOMPARE(control<QLabel>(*window, "xmlFileName")->text(), QStringLiteral("broken.xml"));
    QVERIFY(!control<QPushButton>(*window, "createButton")->isEnabled());
    QVERIFY(!window->createTitles());
    QCOMPARE(read_all(window->outputPath()), before);
    QVERIFY(window->openDocument(kExample));
    QVERIFY(control<QPushButton>(*window, "createButton")->isEnabled());
  }

  void previewFollowsTheLabelsAndMenus() {
    const auto window = newWindow();
    QVERIFY(window->openDocument(kExample));
    auto* preview = window->findChild<quillory::gui::TitlePreview*>();
    const QString first_clip = preview->clipMenu()->itemText(0).section(QStringLiteral(". "), 1);
    choose(choice(*window, 1), QStringLiteral("Clip Name"));
    label(*window, 1)->setText(QStringLiteral("Clip:"));
    QVERIFY2(preview->text().startsWith("Clip: " + first_clip + "\n"), qPrintable(preview->text()));
    choose(choice(*window, 1), QStringLiteral("Text"));
    QTest::keyClicks(label(*window, 1), QStringLiteral(" more"));
    QVERIFY(preview->text().startsWith(QStringLiteral("Clip: more\n")));
    setLines(*window, {"", "", "", "", ""}, {" ", "Text", " ", "Text", " "});
    QCOMPARE(preview->text(), QStringLiteral("\n\n\n\n\n"));
  }

  void settingsSurviveANewWindow() {
    const QStringList labels{"One", "", "  three", "Four & more", "Fünf"};
    const QStringList lines{" ", "Text", "Shot/Take", "Date (13/3/2010), Time", "Scene"};
    QString rate;
    {
      const auto window = newWindow();
      setLines(*window, labels, lines);
      control<QCheckBox>(*window, "tcrCheckbox")->setChecked(true);
      auto* rates = control<QComboBox>(*window, "ratePopup");
      rates->setCurrentIndex(2);
      rate = rates->currentText();
      window->resize(900, 700);
      QVERIFY(window->close());
    }
    const auto window = newWindow();
    for (int line = 1; line <= 5; ++line) {
      QCOMPARE(label(*window, line)->text(), labels[line - 1]);
      QCOMPARE(choice(*window, line)->currentText(), lines[line - 1]);
    }
    QVERIFY(control<QCheckBox>(*window, "tcrCheckbox")->isChecked());
    QCOMPARE(control<QComboBox>(*window, "ratePopup")->currentText(), rate);
    QCOMPARE(window->size(), QSize(900, 700));
  }

  void droppingAnXmlFileOpensIt() {
    const auto window = newWindow();
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(kExample)});
    const QPoint centre = window->rect().center();
    QDragEnterEvent enter(centre, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(centre), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &drop);
    QCOMPARE(control<QLabel>(*window, "xmlFileName")->text(), QStringLiteral("dailies.xml"));
  }
};

int main(int argc, char** argv) {
  // The window's output and settings go to folders of the test's own; both variables are read
  // once, at their first use, so they are set before anything else runs.
  const QTemporaryDir data;
  const QTemporaryDir config;
  qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
  qputenv("XDG_CONFIG_HOME", QFile::encodeName(config.path()));
  QApplication app(argc, argv);
  QCoreApplication::setOrganizationName(QStringLiteral("Ferncroft"));
  QCoreApplication::setApplicationName(QStringLiteral("Quillory Tests"));
  MainWindowTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "main_window_test.moc"
