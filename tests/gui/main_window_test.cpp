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

#include "form/memory_form.h"
#include "log_pane.h"
#include "form/controller.h"
#include "startup/frame_rates.h"
#include "test_environment.h"
#include "title_preview.h"
#include "titles/compose_title_text.h"
#include "xml_tree.h"

using quillory::gui::MainWindow;

namespace {

const QString kExample = QStringLiteral(QUILLORY_EXAMPLE);

QStringList items_of(const QComboBox* menu) {
  QStringList items;
  for (int i = 0; i < menu->count(); ++i) items << menu->itemText(i);
  return items;
}

QString read_all(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(file.readAll());
}

bool write_all(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

// What the core makes of a document on its own, to judge the window's menus by.
struct Reference {
  explicit Reference(const QString& path) : controller(form.form(), sink, quillory::OutputPaths{}) {
    controller.get_info_from_clips(QFile::encodeName(path).toStdString());
  }
  quillory::MemoryForm form;
  quillory::RecordingSink sink;
  quillory::Controller controller;
};

// Closes the error dialogs that a step left open; returns their texts, informative text last.
QStringList close_dialogs(QWidget* window) {
  QStringList texts;
  for (QMessageBox* box : window->findChildren<QMessageBox*>()) {
    if (!box->isVisible()) continue;
    texts << box->text() << box->informativeText();
    box->close();
  }
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return texts;
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

  static void type(QLineEdit* field, const QString& text) {
    field->selectAll();
    QTest::keyClick(field, Qt::Key_Delete);
    // Key clicks carry Latin-1 only; anything else is typed as an input method would.
    bool latin1 = true;
    for (const QChar c : text) latin1 = latin1 && c.unicode() < 0x80;
    if (latin1) {
      QTest::keyClicks(field, text);
    } else {
      field->insert(text);
    }
  }

  static void choose(QComboBox* menu, const QString& title) {
    const int index = menu->findText(title, Qt::MatchExactly | Qt::MatchCaseSensitive);
    QVERIFY2(index >= 0, qPrintable(QStringLiteral("no item \"%1\"").arg(title)));
    menu->setCurrentIndex(index);
  }

 private Q_SLOTS:
  void initTestCase() { QVERIFY2(QFile::exists(kExample), qPrintable(kExample + " is missing")); }

  void init() {
    QSettings().clear();
    QFile::remove(QString::fromStdString(*quillory::start_up().TEMP_XML_FILE));
  }

  void startsLikeTheCommandLine() {
    const auto window = newWindow();
    QVERIFY(control<QLabel>(*window, "xmlIcon")->isHidden());
    QVERIFY(!control<QPushButton>(*window, "createButton")->isEnabled());
    QCOMPARE(control<QComboBox>(*window, "templatePopup")->count(), 0);
    const QStringList defaults{"Clip Name", "File Name", "Reel Name", "First Frame Timecode",
                               "Date (13 March 2010), Time"};
    for (int line = 1; line <= 5; ++line) {
      const auto name = QStringLiteral("line%1").arg(line).toLatin1();
      QCOMPARE(control<QLineEdit>(*window, (name + "Label").constData())->text(), QString());
      QCOMPARE(control<QComboBox>(*window, (name + "Popup").constData())->currentText(),
               defaults[line - 1]);
    }
    QVERIFY(!control<QCheckBox>(*window, "tcrCheckbox")->isChecked());
    QStringList rates;
    for (const auto& rate : quillory::FRAME_RATES) rates << QString::fromUtf8(rate.type.data());
    QCOMPARE(items_of(control<QComboBox>(*window, "ratePopup")), rates);
  }

  void openFillsTheMenusAndTheDisplay() {
    const auto window = newWindow();
    QVERIFY(window->openDocument(kExample));
    QVERIFY(close_dialogs(window.get()).isEmpty());

    const Reference reference(kExample);
    const auto& fields = reference.controller.fields();
    QStringList templates;
    for (const auto& title : fields.templates_array)
      templates << QString::fromStdString(title.name);
    QCOMPARE(templates.first(), QStringLiteral("Default"));
    QCOMPARE(items_of(control<QComboBox>(*window, "templatePopup")), templates);
    QStringList rates;
    for (const auto& rate : fields.frame_rates) rates << QString::fromStdString(rate);
    if (rates.isEmpty()) {
      for (const auto& rate : quillory::FRAME_RATES) rates << QString::fromUtf8(rate.type.data());
    }
    QCOMPARE(items_of(control<QComboBox>(*window, "ratePopup")), rates);

    QStringList choices;
    for (std::string_view title : quillory::CHOICE_TITLES) {
      choices << QString::fromUtf8(title.data(), static_cast<qsizetype>(title.size()));
    }
    QCOMPARE(choices.first(), QStringLiteral(" "));
    for (int line = 1; line <= 5; ++line) {
      const auto name = QStringLiteral("line%1Popup").arg(line).toLatin1();
      QCOMPARE(items_of(control<QComboBox>(*window, name.constData())), choices);
    }

    const auto* icon = control<QLabel>(*window, "xmlIcon");
    QVERIFY(icon->isVisible());
    QCOMPARE(icon->toolTip(), kExample);
    QCOMPARE(control<QLabel>(*window, "xmlFileName")->text(), QStringLiteral("dailies.xml"));
    QCOMPARE(control<QLineEdit>(*window, "nameField")->text(), QStringLiteral("dailies"));
    QVERIFY(control<QPushButton>(*window, "createButton")->isEnabled());
    const QString log = window->findChild<quillory::gui::LogPane*>()->text();
    QVERIFY(log.contains(QStringLiteral("opening...")));
    QVERIFY(log.contains(QStringLiteral("...done!")));
  }

  void createTitlesWritesWhatTheCommandLineWrites() {
    const auto window = newWindow();
    QVERIFY(window->openDocument(kExample));

    auto* templates = control<QComboBox>(*window, "templatePopup");
    auto* rates = control<QComboBox>(*window, "ratePopup");
    templates->setCurrentIndex(templates->count() - 1);
    rates->setCurrentIndex(rates->count() - 1);
    type(control<QLineEdit>(*window, "nameField"), QStringLiteral("Day 1 & titles"));
    const QStringList labels{"Clip:", "", "Note <1>", "TC", "Shot on"};
    const QStringList lines{"Clip Name", " ", "Log Note", "First Frame Timecode",
                            "Date (3/13/2010), Time"};
    for (int line = 1; line <= 5; ++line) {
      const auto name = QStringLiteral("line%1").arg(line).toLatin1();
      type(control<QLineEdit>(*window, (name + "Label").constData()), labels[line - 1]);
      choose(control<QComboBox>(*window, (name + "Popup").constData()), lines[line - 1]);
    }
    auto* tcr = control<QCheckBox>(*window, "tcrCheckbox");
    tcr->setFocus();
    QTest::keyClick(tcr, Qt::Key_Space);
    QVERIFY(tcr->isChecked());

    QTest::mouseClick(control<QPushButton>(*window, "createButton"), Qt::LeftButton);
    QVERIFY(close_dialogs(window.get()).isEmpty());
    const QString written = window->outputPath();
    QVERIFY(QFile::exists(written));
    QVERIFY(control<QWidget>(*window, "outputRow")->isVisible());
    QCOMPARE(control<QLabel>(*window, "outputPath")->toolTip(), written);

    QTemporaryDir folder;
    const QString expected = folder.filePath(QStringLiteral("cli.xml"));
    QStringList arguments{
        "--template", templates->currentText(), "--name", QStringLiteral("Day 1 & titles"),
        "--rate",     rates->currentText(),     "--tcr",  "--output",
        expected};
    for (int line = 1; line <= 5; ++line) {
      arguments << QStringLiteral("--label%1").arg(line) << labels[line - 1]
                << QStringLiteral("--line%1").arg(line) << lines[line - 1];
    }
    arguments << kExample;
    QProcess cli;
    cli.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    cli.setStandardOutputFile(QProcess::nullDevice());
    cli.start(QStringLiteral(QUILLORY_CLI), arguments);
    QVERIFY(cli.waitForFinished(120000));
    QCOMPARE(cli.exitStatus(), QProcess::NormalExit);
    QCOMPARE(cli.exitCode(), 0);

    const std::string difference = quillory::test::tree_difference(
        read_all(expected).toStdString(), read_all(written).toStdString());
    QVERIFY2(difference.empty(), difference.c_str());
  }

  void aCopyOfTheOutputCanBeSavedElsewhere() {
    const auto window = newWindow();
    QVERIFY(window->openDocument(kExample));
    QVERIFY(window->createTitles());
    QTemporaryDir folder;
    const QString copy = folder.filePath(QStringLiteral("copy.xml"));
    QVERIFY(write_all(copy, "older file"));
    QVERIFY(window->saveOutputCopyTo(copy));
    QCOMPARE(read_all(copy), read_all(window->outputPath()));
    QVERIFY(close_dialogs(window.get()).isEmpty());
    QVERIFY(!window->saveOutputCopyTo(folder.filePath(QStringLiteral("missing/copy.xml"))));
    QCOMPARE(close_dialogs(window.get()).size(), 2);
  }

  void notXmemlLeavesDisplayAndMenus() {
    const auto window = newWindow();
    QVERIFY(window->openDocument(kExample));
    auto* templates = control<QComboBox>(*window, "templatePopup");
    auto* rates = control<QComboBox>(*window, "ratePopup");
    templates->setCurrentIndex(templates->count() - 1);
    const QStringList template_items = items_of(templates);
    const QString template_choice = templates->currentText();
    const QStringList rate_items = items_of(rates);
    const QString name = control<QLineEdit>(*window, "nameField")->text();

    QTemporaryDir folder;
    const QString other = folder.filePath(QStringLiteral("project.xml"));
    QVERIFY(write_all(other,
                      "<?xml version=\"1.0\"?>\n<project><clip><name>x</name></clip>"
                      "</project>\n"));
    QVERIFY(!window->openDocument(other));
    QCOMPARE(close_dialogs(window.get()).size(), 2);

    QVERIFY(control<QLabel>(*window, "xmlIcon")->isVisible());
    QCOMPARE(control<QLabel>(*window, "xmlIcon")->toolTip(), kExample);
    QCOMPARE(control<QLabel>(*window, "xmlFileName")->text(), QStringLiteral("dailies.xml"));
    QCOMPARE(items_of(templates), template_items);
    QCOMPARE(templates->currentText(), template_choice);
    QCOMPARE(items_of(rates), rate_items);
    QCOMPARE(control<QLineEdit>(*window, "nameField")->text(), name);
  }

  void failedRunShowsTheMessageAndKeepsThePreviousOutput() {
    const auto window = newWindow();
    QVERIFY(window->openDocument(kExample));
    QVERIFY(window->createTitles());
    const QString before = read_all(window->outputPath());
    QVERIFY(!before.isEmpty());

    // A clip whose video item has no start: it opens, but no sequence can be built from it.
    QTemporaryDir folder;
    const QString broken = folder.filePath(QStringLiteral("broken.xml"));
    QVERIFY(write_all(broken,
                      "<?xml version=\"1.0\"?>\n<xmeml version=\"4\"><clip id=\"c1\"><name>c1"
                      "</name><duration>10</duration><rate><ntsc>FALSE</ntsc><timebase>25"
                      "</timebase></rate><logginginfo><scene>1</scene><shottake>2</shottake>"
                      "<lognote/></logginginfo><media><video><track><clipitem id=\"c1-v\">"
                      "<name>c1</name><file id=\"f1\"><name>c1.mov</name></file></clipitem>"
                      "</track></video></media></clip></xmeml>\n"));
    QVERIFY(window->openDocument(broken));
    QVERIFY(!window->createTitles());
    const QStringList texts = close_dialogs(window.get());
    QCOMPARE(texts.size(), 2);
    QVERIFY2(texts.last().startsWith(QStringLiteral("quillory:")), qPrintable(texts.last()));
    QCOMPARE(read_all(window->outputPath()), before);
    QVERIFY(!window->isBusy());
    QVERIFY(control<QPushButton>(*window, "createButton")->isEnabled());
  }

  void previewFollowsTheLabelsAndMenus() {
    const auto window = newWindow();
    QVERIFY(window->openDocument(kExample));
    const Reference reference(kExample);
    QVERIFY(!reference.controller.fields().clips_array.empty());
    const QString first_clip =
        QString::fromStdString(reference.controller.fields().clips_array.front().clip_name);

    auto* preview = window->findChild<quillory::gui::TitlePreview*>();
    QVERIFY(preview != nullptr);
    QCOMPARE(preview->clipMenu()->currentIndex(), 0);
    auto* label = control<QLineEdit>(*window, "line1Label");
    auto* menu = control<QComboBox>(*window, "line1Popup");
    choose(menu, QStringLiteral("Clip Name"));
    type(label, QStringLiteral("Clip:"));
    QVERIFY2(preview->text().startsWith(QStringLiteral("Clip: ") + first_clip + "\n"),
             qPrintable(preview->text()));
    QVERIFY(!preview->text().contains(QLatin1Char('\r')));

    choose(menu, QStringLiteral("Text"));
    QVERIFY(preview->text().startsWith(QStringLiteral("Clip:\n")));
    QTest::keyClicks(label, QStringLiteral(" more"));
    QVERIFY(preview->text().startsWith(QStringLiteral("Clip: more\n")));
    choose(menu, QStringLiteral(" "));
    QVERIFY(preview->text().startsWith(QStringLiteral("\n")));

    // The preview is the core's own composition, line ends shown as line breaks.
    for (int line = 2; line <= 5; ++line) {
      choose(control<QComboBox>(*window, QStringLiteral("line%1Popup").arg(line)),
             QStringLiteral("Reel Name"));
    }
    quillory::MemoryForm form;
    form.line_labels[0].value = "Clip: more";
    form.line_popups[0].selected = " ";
    for (std::size_t i = 1; i < 5; ++i) form.line_popups[i].selected = "Reel Name";
    QString expected = QString::fromStdString(
        quillory::compose_title_text(reference.controller.fields().clips_array.front(),
                                     quillory::read_line_settings(form.form())));
    expected.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    QCOMPARE(preview->text(), expected);
  }

  void settingsSurviveANewWindow() {
    QString rate;
    {
      const auto window = newWindow();
      const QStringList labels{"One", "", "  three", "Four & more", "Fünf"};
      const QStringList lines{" ", "Text", "Shot/Take", "Date (13/3/2010), Time", "Scene"};
      for (int line = 1; line <= 5; ++line) {
        const auto name = QStringLiteral("line%1").arg(line).toLatin1();
        type(control<QLineEdit>(*window, (name + "Label").constData()), labels[line - 1]);
        choose(control<QComboBox>(*window, (name + "Popup").constData()), lines[line - 1]);
      }
      control<QCheckBox>(*window, "tcrCheckbox")->setChecked(true);
      auto* rates = control<QComboBox>(*window, "ratePopup");
      rates->setCurrentIndex(2);
      rate = rates->currentText();
      window->resize(900, 700);
      QVERIFY(window->close());
    }
    const auto window = newWindow();
    const QStringList labels{"One", "", "  three", "Four & more", "Fünf"};
    const QStringList lines{" ", "Text", "Shot/Take", "Date (13/3/2010), Time", "Scene"};
    for (int line = 1; line <= 5; ++line) {
      const auto name = QStringLiteral("line%1").arg(line).toLatin1();
      QCOMPARE(control<QLineEdit>(*window, (name + "Label").constData())->text(), labels[line - 1]);
      QCOMPARE(control<QComboBox>(*window, (name + "Popup").constData())->currentText(),
               lines[line - 1]);
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

    QMimeData other;
    other.setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/notes.txt"))});
    QDragEnterEvent refused(centre, Qt::CopyAction, &other, Qt::LeftButton, Qt::NoModifier);
    refused.ignore();
    QApplication::sendEvent(window.get(), &refused);
    QVERIFY(!refused.isAccepted());
  }

  void tabGoesThroughTheFormInReadingOrder() {
    const auto window = newWindow();
    QStringList expected{"openButton", "templatePopup", "ratePopup", "nameField"};
    for (int line = 1; line <= 5; ++line) {
      expected << QStringLiteral("line%1Label").arg(line)
               << QStringLiteral("line%1Popup").arg(line);
    }
    expected << "tcrCheckbox"
             << "previewClip"
             << "createButton";
    QStringList order;
    QWidget* widget = control<QWidget>(*window, "openButton");
    for (int step = 0; step < 200 && order.size() < expected.size(); ++step) {
      if (expected.contains(widget->objectName()) && !order.contains(widget->objectName())) {
        order << widget->objectName();
      }
      widget = widget->nextInFocusChain();
    }
    QCOMPARE(order, expected);
    for (const QString& name : expected) {
      QVERIFY2(control<QWidget>(*window, name)->focusPolicy() & Qt::TabFocus, qPrintable(name));
    }
  }
};

int main(int argc, char** argv) {
  const quillory::gui_test::TestEnvironment environment;
  QApplication app(argc, argv);
  quillory::gui_test::name_application();
  if (!environment.isValid()) return 1;
  MainWindowTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "main_window_test.moc"
