// Drives the real window: its menus, fields and buttons, and compares what it writes with what
// the command line writes for the same settings.

#include "main_window.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QTimer>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <memory>

#include <CLI/CLI.hpp>

#include "batch_dialog.h"
#include "command_line.h"
#include "log_pane.h"
#include "media/colour_clip.h"
#include "title_canvas.h"
#include "title_preview.h"

using quillory::gui::MainWindow;

namespace {

const QString kExample = QStringLiteral(QUILLORY_EXAMPLE);

QByteArray read_all(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write_all(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
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
  std::unique_ptr<MainWindow> window_;

  template <class Widget = QWidget>
  Widget* control(const QString& name) const {
    auto* widget = window_->findChild<Widget*>(name);
    if (widget == nullptr) qFatal("the window has no %s", qPrintable(name));
    return widget;
  }
  QString shown(const char* name) const { return control<QLabel>(name)->text(); }
  bool canCreate() const { return control<QPushButton>("createButton")->isEnabled(); }

  void setLines(const QStringList& labels, const QStringList& choices) const {
    for (int line = 1; line <= 5; ++line) {
      control<QLineEdit>(QStringLiteral("line%1Label").arg(line))->setText(labels[line - 1]);
      auto* menu = control<QComboBox>(QStringLiteral("line%1Popup").arg(line));
      menu->setCurrentIndex(menu->findText(choices[line - 1], Qt::MatchExactly | Qt::MatchCaseSensitive));
    }
  }

  // What the window remembers between launches, as text.
  QStringList remembered() const {
    QStringList values;
    for (int line = 1; line <= 5; ++line) {
      values << control<QLineEdit>(QStringLiteral("line%1Label").arg(line))->text()
             << control<QComboBox>(QStringLiteral("line%1Popup").arg(line))->currentText();
    }
    return values << control<QComboBox>("ratePopup")->currentText()
                  << QString::number(control<QCheckBox>("tcrCheckbox")->isChecked())
                  << QString::number(control<QCheckBox>("tolerantCheckbox")->isChecked())
                  << QString::number(control<QCheckBox>("importSafeCheckbox")->isChecked())
                  << QStringLiteral("%1x%2").arg(window_->width()).arg(window_->height());
  }

  void openWindow() {
    window_ = std::make_unique<MainWindow>(quillory::start_up());
    window_->show();
    QVERIFY(QTest::qWaitForWindowExposed(window_.get()));
  }

 private Q_SLOTS:
  void init() {
    QSettings().clear();
    QFile::remove(QString::fromStdString(*quillory::start_up().TEMP_XML_FILE));
    openWindow();
  }
  void cleanup() { window_.reset(); }

  void droppedDocumentOpens() {
    QVERIFY(!canCreate());
    QMimeData mime;
    mime.setUrls({QUrl::fromLocalFile(kExample)});
    const QPoint centre = window_->rect().center();
    QDragEnterEvent enter(centre, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window_.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(centre), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window_.get(), &drop);
    QCOMPARE(shown("xmlFileName"), QStringLiteral("dailies.xml"));
    QCOMPARE(control<QLineEdit>("nameField")->text(), QStringLiteral("dailies"));
    QVERIFY(canCreate());
  }

  // The window's controls set as the options say must give the form the options give, and the
  // file the command line writes.
  void windowAndCommandLineFillTheSameForm_data() {
    QTest::addColumn<QStringList>("options");
    QTest::newRow("defaults") << QStringList{};
    QTest::newRow("everything set")
        << QStringList{"--template", "Slate Card", "--name", "Day 1 & titles", "--rate",
                       "24P (24fps)", "--tcr", "--import-safe", "--label1", "Clip:",
                       "--label3", "Note <1>", "--line2", " ", "--line3", "Log Note",
                       "--label4", "TC", "--line5", "Date (3/13/2010), Time"};
    QTest::newRow("lines that show nothing, read tolerantly")
        << QStringList{"--line1", "", "--line4", "", "--label4", "only a label", "--tolerant",
                       "--name", ""};
  }
  void windowAndCommandLineFillTheSameForm() {
    QFETCH(QStringList, options);
    quillory::cli::Options parsed;
    CLI::App app;
    quillory::cli::add_options(app, parsed);
    std::vector<std::string> arguments{kExample.toStdString()};
    for (auto it = options.rbegin(); it != options.rend(); ++it) arguments.push_back(it->toStdString());
    app.parse(arguments);
    const quillory::Form expected = quillory::cli::form_from_options(parsed);

    control<QCheckBox>("tolerantCheckbox")->setChecked(parsed.tolerant);
    QVERIFY(window_->openDocument(kExample));
    auto* templates = control<QComboBox>("templatePopup");
    templates->setCurrentIndex(templates->findText(QString::fromStdString(
        parsed.template_name.value_or("Default"))));
    if (parsed.rate) control<QComboBox>("ratePopup")->setCurrentText(QString::fromStdString(*parsed.rate));
    if (parsed.name) control<QLineEdit>("nameField")->setText(QString::fromStdString(*parsed.name));
    QStringList labels, lines;
    for (std::size_t i = 0; i < 5; ++i) {
      labels << QString::fromStdString(parsed.labels[i]);
      lines << QString::fromStdString(parsed.lines[i]);
    }
    setLines(labels, lines);
    control<QCheckBox>("tcrCheckbox")->setChecked(parsed.tcr);
    control<QCheckBox>("importSafeCheckbox")->setChecked(parsed.import_safe);
    quillory::Controller controller({});
    quillory::NullSink quiet;
    controller.get_info_from_clips(kExample.toStdString(), expected, quiet);
    QVERIFY(controller.title_settings(window_->form()) == controller.title_settings(expected));

    QVERIFY(window_->createTitles());
    QCOMPARE(close_dialogs(window_.get()), 0);
    QTemporaryDir folder;
    const QString written = folder.filePath(QStringLiteral("cli.xml"));
    QProcess cli;
    cli.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    cli.start(QStringLiteral(QUILLORY_CLI),
              QStringList(options) << "--quiet" << "--output" << written << kExample);
    QVERIFY(cli.waitForFinished(120000));
    QCOMPARE(cli.exitCode(), 0);
    QCOMPARE(read_all(written), read_all(window_->outputPath()));

    // A copy replaces an older file whole.
    const QString copy = folder.filePath(QStringLiteral("copy.xml"));
    QVERIFY(write_all(copy, "older file"));
    QVERIFY(window_->saveOutputCopyTo(copy));
    QCOMPARE(read_all(copy), read_all(written));
    // Another document opened, the file holds none of its titles: no row, no copy.
    QVERIFY(window_->openDocument(kExample));
    QVERIFY(control<QWidget>("outputRow")->isHidden());
    QVERIFY(!window_->saveOutputCopyTo(copy));
  }

  // Several exports with the window's settings: each file what the command line writes for it
  // alone, each failure listed with its message; one without the chosen template fails.
  void severalExportsGetTheWindowsSettings() {
    QVERIFY(window_->openDocument(kExample));
    control<QComboBox>("templatePopup")->setCurrentText(QStringLiteral("Slate Card"));
    control<QCheckBox>("tcrCheckbox")->setChecked(true);
    QTemporaryDir folder;
    const QString day1 = folder.filePath(QStringLiteral("day1.xml"));
    const QString day2 = folder.filePath(QStringLiteral("day2.xml"));
    const QString day3 = folder.filePath(QStringLiteral("day3.xml"));
    QVERIFY(QFile::copy(kExample, day1) && write_all(day2, "<project/>") &&
            write_all(day3, "<xmeml version=\"4\"/>"));
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("out")));
    bool offered = false;
    for (QAction* action : window_->findChildren<QAction*>()) {
      offered = offered || action->text() == QStringLiteral("Create Titles for &Several Exports…");
    }
    QVERIFY(offered);

    quillory::gui::BatchDialog dialog(window_->form(), {}, folder.path());
    dialog.addSources({day1, day2, day3});
    dialog.setOutputFolder(folder.filePath(QStringLiteral("out")));
    QSignalSpy finished(&dialog, &quillory::gui::BatchDialog::runFinished);
    QVERIFY(dialog.start());
    QVERIFY(finished.wait(60000));
    const QString written = folder.filePath(QStringLiteral("out/day1.xml"));
    QCOMPARE(dialog.results(), (QStringList{"Written to " + written,
                                            day2 + " is not an xmeml document (its first node "
                                                   "is not <xmeml>)",
                                            day3 + " has no template \"Slate Card\""}));
    QVERIFY(!QFile::exists(folder.filePath(QStringLiteral("out/day2.xml"))));
    QProcess cli;
    cli.start(QStringLiteral(QUILLORY_CLI), {"--quiet", "--tcr", "--template", "Slate Card",
                                             "--output", folder.filePath("cli.xml"), day1});
    QVERIFY(cli.waitForFinished(120000));
    QCOMPARE(read_all(written), read_all(folder.filePath("cli.xml")));
  }

  void refusalsKeepThePreviousStateAndFile() {
    QVERIFY(window_->openDocument(kExample));
    QVERIFY(window_->createTitles());
    QByteArray before = read_all(window_->outputPath());
    auto* templates = control<QComboBox>("templatePopup");
    const int template_count = templates->count();
    templates->setCurrentIndex(template_count - 1);

    QTemporaryDir folder;
    const auto document = [&folder](const QString& name, const QByteArray& body) {
      const QString path = folder.filePath(name);
      return write_all(path, body) ? path : QString();
    };
    QVERIFY(!window_->openDocument(document("project.xml", "<project><clip/></project>")));
    QCOMPARE(close_dialogs(window_.get()), 1);
    QCOMPARE(shown("xmlFileName"), QStringLiteral("dailies.xml"));
    QCOMPARE(templates->count(), template_count);
    QCOMPARE(templates->currentIndex(), template_count - 1);

    // A clip whose video item has no start opens, but no sequence can be built from it.
    const QByteArray clip =
        "<clip id=\"c1\"><name>c1</name><duration>10</duration><rate><ntsc>FALSE</ntsc>"
        "<timebase>25</timebase></rate><logginginfo><scene>1</scene><shottake>2</shottake>"
        "<lognote/></logginginfo><media><video><track><clipitem id=\"c1-v\"><name>c1</name>"
        "<in>0</in><out>10</out><file id=\"f1\"><name>c1.mov</name></file></clipitem></track>"
        "</video></media></clip>";
    QVERIFY(window_->openDocument(document("unplaceable.xml", "<xmeml>" + clip + "</xmeml>")));
    QVERIFY(!window_->createTitles());
    QVERIFY(window_->findChild<QMessageBox*>()->informativeText().contains(
        "“Accept incomplete exports” takes this"));
    QCOMPARE(close_dialogs(window_.get()), 1);
    QCOMPARE(read_all(window_->outputPath()), before);
    QVERIFY(canCreate());

    // Accepting incomplete exports reads the document again; the item gets its timing, and the
    // log and the status line say so.
    auto* tolerant = control<QCheckBox>("tolerantCheckbox");
    tolerant->setChecked(true);
    QVERIFY(window_->createTitles());
    QVERIFY(control<quillory::gui::LogPane>("logPane")->text().contains(
        "quillory: warning: clip 1 \"c1\" (line 1): video clip item has no <start>/<end>, added"));
    QVERIFY(window_->statusBar()->currentMessage().endsWith("1 clip needed 1 assumption; see the warnings above"));
    tolerant->setChecked(false);
    before = read_all(window_->outputPath());

    // A document that breaks off after its first clip shows what was read, and makes nothing.
    const QByteArray placeable = QByteArray(clip).replace("<file", "<start>0</start><end>0</end><file");
    const QByteArray second = QByteArray(clip).replace("<scene>1</scene>", "");
    QVERIFY(!window_->openDocument(document("broken.xml", "<xmeml>" + placeable + second + "</xmeml>")));
    QCOMPARE(close_dialogs(window_.get()), 1);
    QCOMPARE(shown("xmlFileName"), QStringLiteral("broken.xml"));
    QVERIFY(!canCreate());
    QVERIFY(!window_->createTitles());
    QCOMPARE(read_all(window_->outputPath()), before);
    QVERIFY(window_->openDocument(kExample));
    QVERIFY(canCreate());
  }

  // "Source:" offers the document's sequences; one chosen, the preview lists its shots where
  // they start, the rate is the sequence's own, and another document starts from the master
  // clips again.
  void sourcePopupTitlesTheShotsOfASequence() {
    const QString edit = QStringLiteral(QUILLORY_CASES "/sequence_track_two_over_track_one_titles_it_twice/input.xml");
    QVERIFY(window_->openDocument(edit));
    auto* sources = control<QComboBox>("sourcePopup");
    QCOMPARE(sources->count(), 2);
    sources->setCurrentIndex(1);
    auto* shots = control<QComboBox>("previewClip");
    QCOMPARE(shots->count(), 4);
    QCOMPARE(shots->itemText(2), QStringLiteral("3. A at 00:00:02:10"));
    QVERIFY(!control<QComboBox>("ratePopup")->isEnabled());
    QCOMPARE(control<QLineEdit>("nameField")->text(), QStringLiteral("Over"));
    QVERIFY(window_->createTitles());
    QCOMPARE(read_all(window_->outputPath()).count("<generatoritem id=\"Quillory Card "), 4);
    QVERIFY(window_->openDocument(kExample));
    QCOMPARE(sources->currentText(), QStringLiteral("Master Clips"));
    QVERIFY(control<QComboBox>("ratePopup")->isEnabled());
    // An FCPXML document's projects are its sequences.
    QVERIFY(window_->openDocument(QStringLiteral(
        QUILLORY_CASES "/fcpxml_project_connected_clip_over_a_primary_clip_titles_three_shots/input.fcpxml")));
    QCOMPARE(sources->itemText(1), QStringLiteral("Scene 12 cut"));
    sources->setCurrentIndex(1);
    QCOMPARE(shots->count(), 3);
    QCOMPARE(shots->itemText(1), QStringLiteral("2. 12B-3 at 00:00:04:00"));
    QVERIFY(!control<QComboBox>("ratePopup")->isEnabled());
    QVERIFY(window_->createTitles());
    QCOMPARE(read_all(window_->outputPath()).count("name=\"Quillory Card\""), 3);
    QVERIFY(QFile::remove(window_->outputPath()));  // the Ferncroft folder holds one file
    // A sequence named like the first item is a sequence all the same.
    QVERIFY(window_->openDocument(QStringLiteral(QUILLORY_CASES "/sequence_named_master_clips_is_titled_with_the_option/input.xml")));
    sources->setCurrentIndex(1);
    QCOMPARE(sources->currentIndex(), 1);
    QVERIFY(!control<QComboBox>("ratePopup")->isEnabled());
  }

  // An open that fails leaves the window showing what the controller still holds; a copy of the
  // titles is proposed under a new name, and never goes over the source or the file copied.
  void failedOpenAndCopyKeepTheSource() {
    QTemporaryDir folder;
    const QString edit = folder.filePath(QStringLiteral("edit.xml"));
    QVERIFY(QFile::copy(QStringLiteral(QUILLORY_CASES "/sequence_track_two_over_track_one_titles_it_twice/input.xml"), edit));
    const QByteArray source = read_all(edit);
    QVERIFY(window_->openDocument(edit));
    auto* sources = control<QComboBox>("sourcePopup");
    sources->setCurrentIndex(1);
    control<QComboBox>("previewClip")->setCurrentIndex(2);
    const auto shown_state = [this] {
      return QStringList{control<QComboBox>("sourcePopup")->currentText(), control<QComboBox>("previewClip")->currentText(),
                         control<QPlainTextEdit>("previewText")->toPlainText(), QString::number(canCreate())};
    };
    const QStringList before = shown_state();
    QVERIFY(!window_->openDocument(folder.filePath(QStringLiteral("missing.xml"))));
    QCOMPARE(close_dialogs(window_.get()), 1);
    QCOMPARE(shown_state(), before);
    QVERIFY(window_->createTitles());
    QCOMPARE(read_all(window_->outputPath()).count("<generatoritem id=\"Quillory Card "), 4);

    QString proposed;
    QTimer::singleShot(0, window_.get(), [this, &proposed] {
      if (auto* dialog = window_->findChild<QFileDialog*>()) {
        proposed = dialog->selectedFiles().value(0);
        dialog->reject();
      }
    });
    control<QPushButton>("saveCopyButton")->click();
    QCOMPARE(proposed, folder.filePath(QStringLiteral("Over titles.xml")));
    for (const QString& target : {edit, window_->outputPath()}) {
      QVERIFY(!window_->saveOutputCopyTo(target));
      QCOMPARE(close_dialogs(window_.get()), 1);
    }
    QCOMPARE(read_all(edit), source);

    // Read again for another source, a document gone meanwhile keeps its sequence chosen.
    QVERIFY(QFile::rename(edit, folder.filePath(QStringLiteral("moved.xml"))));
    sources->setCurrentIndex(0);
    QCOMPARE(close_dialogs(window_.get()), 1);
    QCOMPARE(shown_state(), before);
  }

  // The drawn title: where its text falls for the template's origin and alignment, which
  // lines run outside title-safe, and the frame's aspect.
  void canvasDrawsWhereTheTemplateSays_data() {
    QTest::addColumn<double>("origin_y");
    QTest::addColumn<int>("alignment");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("outside");
    const QString long_name = QString(QLatin1Char('W')).repeated(160) + QStringLiteral(".mov");
    QTest::newRow("centred") << 0.0 << int(quillory::TextAlignment::Centre) << 1920 << 1080 << "A001C003" << "";
    QTest::newRow("lower third, left") << 0.2 << int(quillory::TextAlignment::Left) << 1920 << 1080 << "A001C003" << "";
    QTest::newRow("PAL frame, right") << -0.2 << int(quillory::TextAlignment::Right) << 720 << 576 << "A001C003" << "";
    QTest::newRow("a long file name") << 0.0 << int(quillory::TextAlignment::Centre) << 1920 << 1080 << long_name << "1";
  }
  void canvasDrawsWhereTheTemplateSays() {
    QFETCH(double, origin_y);
    QFETCH(int, alignment);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(QString, first);
    QFETCH(QString, outside);
    quillory::TitleStyle style;
    style.size = height / 10.0;
    style.colour = {255, 255, 255, 255};
    style.origin_y = origin_y;
    style.alignment = static_cast<quillory::TextAlignment>(alignment);
    quillory::gui::TitleCanvas canvas;
    canvas.setStyle(style, {width, height});
    canvas.setLines({first, QStringLiteral("A001")});
    QStringList numbers;
    for (int line : canvas.linesOutside()) numbers << QString::number(line);
    QCOMPARE(numbers.join(QLatin1Char(',')), outside);
    const QImage image = canvas.render(width / 2);
    QCOMPARE(image.height(), height / 2);
    if (!outside.isEmpty()) return;
    // The white text's bounds, in the image, against the block's place in the frame.
    QRect text;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (qGray(image.pixel(x, y)) > 200) text |= QRect(x, y, 1, 1);
      }
    }
    QVERIFY(!text.isEmpty());
    QVERIFY(qAbs(text.center().y() - image.height() * (0.5 + origin_y)) < image.height() / 10);
    // The lines share the edge their alignment names, and the drawing keeps to them.
    const auto lines = canvas.layout({first, QStringLiteral("A001")}).lines;
    const double left = std::min(lines[0].left(), lines[1].left());
    const double right = std::max(lines[0].right(), lines[1].right());
    if (alignment == int(quillory::TextAlignment::Left)) QCOMPARE(lines[0].left(), lines[1].left());
    if (alignment == int(quillory::TextAlignment::Right)) QCOMPARE(lines[0].right(), lines[1].right());
    if (alignment == int(quillory::TextAlignment::Centre)) QVERIFY(qAbs(lines[1].center().x() - width / 2.0) < 1);
    QVERIFY(qAbs(text.left() - left / 2) < 6 && qAbs(text.right() - right / 2) < 6);
  }

  // Each clip's title over its own frame, the one at its <in>, from where the document says or
  // found by name in the media folder; a file found nowhere leaves the dark frame, and the
  // status line says so. The window's first size gives the frame room to be read.
  void previewDrawsEachClipsOwnFrame() {
    auto* preview = window_->findChild<quillory::gui::TitlePreview*>();
    auto* canvas = preview->canvas();
    const auto drawn_width = [canvas] {
      const quillory::FrameSize frame = canvas->frame();
      return std::min<double>(canvas->width(), canvas->height() * double(frame.width) / frame.height);
    };
    QVERIFY2(drawn_width() >= 480, qPrintable(QString::number(drawn_width())));

    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QStringLiteral("moved/day 1")));
    const QString here = folder.filePath(QStringLiteral("colours.mov"));
    QVERIFY(quillory::test::make_colour_clip(here.toStdString()));
    QVERIFY(QFile::copy(here, folder.filePath(QStringLiteral("moved/day 1/elsewhere.mov"))));
    const auto clip = [](const QByteArray& name, int in, const QByteArray& url) {
      return "<clip id=\"" + name + "\"><name>" + name + "</name><duration>5</duration><rate><ntsc>FALSE"
             "</ntsc><timebase>25</timebase></rate><media><video><track><clipitem id=\"" + name +
             "-v\"><start>0</start><end>5</end><in>" + QByteArray::number(in) + "</in><out>" +
             QByteArray::number(in + 5) + "</out><file id=\"" + name + "-f\"><name>" + name +
             ".mov</name><pathurl>" + url + "</pathurl></file></clipitem></track></video></media>"
             "<logginginfo><scene/><shottake/><lognote/></logginginfo></clip>";
    };
    const QString source = folder.filePath(QStringLiteral("reachable.xml"));
    QVERIFY(write_all(source, "<xmeml>" + clip("red", 0, QUrl::fromLocalFile(here).toEncoded()) +
                                  clip("blue", 12, "file://localhost/Volumes/RAID/elsewhere.mov") +
                                  clip("gone", 7, "file://localhost/Volumes/RAID/missing.mov") + "</xmeml>"));
    QVERIFY(window_->openDocument(source));

    struct Step {
      int clip;
      const char* media_folder;
      QColor under_title;
      const char* status;
    };
    const QColor dark(48, 48, 48);
    const Step steps[] = {{0, "", Qt::red, ""},
                          {1, "", dark, "media not found: elsewhere.mov"},
                          {2, "", dark, "media not found: missing.mov"},
                          {1, "moved", Qt::blue, ""},
                          {0, "moved", Qt::red, ""}};
    for (const Step& step : steps) {
      preview->setMediaFolder(*step.media_folder ? folder.filePath(step.media_folder) : QString());
      control<QComboBox>("previewClip")->setCurrentIndex(step.clip);
      QTRY_VERIFY_WITH_TIMEOUT(!preview->framePending(), 60000);
      QCOMPARE(control<QLabel>("mediaStatus")->text(), QString::fromLatin1(step.status));
      // At the height of the title block's centre, left of the safe-area guides.
      const QImage drawn = canvas->render(canvas->width());
      const double centre = canvas->layout({QStringLiteral("x")}).lines.constFirst().center().y();
      const double scale = double(drawn.width()) / canvas->frame().width;
      const QColor under = drawn.pixelColor(drawn.width() / 25, int(centre * scale));
      const auto near = [](int a, int b) { return qAbs(a - b) <= 24; };
      QVERIFY2(near(under.red(), step.under_title.red()) && near(under.green(), step.under_title.green()) &&
                   near(under.blue(), step.under_title.blue()),
               qPrintable(QStringLiteral("clip %1: %2").arg(step.clip).arg(under.name())));
    }
    preview->actualSizeAction()->trigger();
    QCOMPARE(canvas->size(), QSize(canvas->frame().width, canvas->frame().height));
  }

  // Cancel during a long run: the previous file byte for byte, and no temporary file.
  void cancelLeavesThePreviousFile() {
    QTemporaryDir folder;
    QByteArray clips;
    const QByteArray file = "<file id=\"f\"><name>a.mov</name><pathurl>file://localhost/a.mov</pathurl></file>";
    for (int i = 0; i < 4000; ++i) {
      const QByteArray name = "C" + QByteArray::number(i);
      clips += "<clip id=\"" + name + "\"><name>" + name + "</name><duration>25</duration><rate><ntsc>FALSE"
               "</ntsc><timebase>25</timebase></rate><media><video><track><clipitem id=\"" + name +
               "-v\"><start>0</start><end>25</end><in>0</in><out>25</out>" + (i == 0 ? file : "<file id=\"f\"/>") +
               "</clipitem></track></video></media><logginginfo><scene/><shottake/><lognote/></logginginfo></clip>";
    }
    const QString source = folder.filePath(QStringLiteral("long.xml"));
    QVERIFY(write_all(source, "<xmeml>" + clips + "</xmeml>"));
    QVERIFY(window_->openDocument(source));
    QVERIFY(write_all(window_->outputPath(), "the previous titles"));
    auto* cancel = control<QPushButton>("cancelButton");
    QTimer press;
    connect(&press, &QTimer::timeout, [cancel] {
      if (cancel->isVisible()) cancel->click();
    });
    press.start(1);
    QVERIFY(!window_->createTitles());
    QCOMPARE(read_all(window_->outputPath()), QByteArray("the previous titles"));
    QCOMPARE(QDir(QFileInfo(window_->outputPath()).path()).entryList(QDir::Files),
             QStringList{QStringLiteral("Quillory.xml")});
    QVERIFY(window_->statusBar()->currentMessage().startsWith("Cancelled"));
  }

  void settingsSurviveANewWindow() {
    setLines({"One", "", "  three", "Four & more", "Fünf"},
             {" ", "Text", "Shot/Take", "Date (13/3/2010), Time", "Scene"});
    control<QCheckBox>("tcrCheckbox")->setChecked(true);
    control<QCheckBox>("tolerantCheckbox")->setChecked(true);
    control<QCheckBox>("importSafeCheckbox")->setChecked(true);
    control<QComboBox>("ratePopup")->setCurrentIndex(2);
    window_->resize(900, 700);
    const QStringList before = remembered();
    QVERIFY(window_->close());
    openWindow();
    QCOMPARE(remembered(), before);
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
