#include "form_settings.h"

#include <algorithm>

#include "titles/compose_title_text.h"

namespace quillory::gui {
namespace {

QString label_key(std::size_t line) {
  return QStringLiteral("lines/%1/label").arg(line + 1);
}
QString choice_key(std::size_t line) {
  return QStringLiteral("lines/%1/choice").arg(line + 1);
}

const QString kTimecodeReader = QStringLiteral("timecodeReader");
const QString kRate = QStringLiteral("rate");
const QString kTolerant = QStringLiteral("acceptIncompleteExports");
const QString kImportSafe = QStringLiteral("importSafeOutput");
const QString kLastFolder = QStringLiteral("lastFolder");
const QString kMediaFolder = QStringLiteral("preview/mediaFolder");
const QString kGeometry = QStringLiteral("window/geometry");

bool is_choice_title(const QString& title) {
  const std::string text = title.toStdString();
  return std::find(CHOICE_TITLES.begin(), CHOICE_TITLES.end(), text) != CHOICE_TITLES.end();
}

}  // namespace

FormSettings default_form_settings() {
  FormSettings values;
  const LineSettings lines = default_line_settings();
  for (std::size_t i = 0; i < 5; ++i) {
    values.labels[i] = QString::fromStdString(lines[i].label);
    values.choices[i] = QString::fromStdString(lines[i].choice.value_or(""));
  }
  return values;
}

FormSettings load_form_settings(const QSettings& settings) {
  FormSettings values = default_form_settings();
  for (std::size_t i = 0; i < 5; ++i) {
    values.labels[i] = settings.value(label_key(i), values.labels[i]).toString();
    const QString choice = settings.value(choice_key(i), values.choices[i]).toString();
    if (is_choice_title(choice)) values.choices[i] = choice;
  }
  values.timecode_reader = settings.value(kTimecodeReader, false).toBool();
  values.rate = settings.value(kRate).toString();
  values.tolerant = settings.value(kTolerant, false).toBool();
  values.import_safe = settings.value(kImportSafe, false).toBool();
  values.last_folder = settings.value(kLastFolder).toString();
  values.media_folder = settings.value(kMediaFolder).toString();
  values.geometry = settings.value(kGeometry).toByteArray();
  return values;
}

void save_form_settings(QSettings& settings, const FormSettings& values) {
  for (std::size_t i = 0; i < 5; ++i) {
    settings.setValue(label_key(i), values.labels[i]);
    settings.setValue(choice_key(i), values.choices[i]);
  }
  settings.setValue(kTimecodeReader, values.timecode_reader);
  settings.setValue(kRate, values.rate);
  settings.setValue(kTolerant, values.tolerant);
  settings.setValue(kImportSafe, values.import_safe);
  settings.setValue(kLastFolder, values.last_folder);
  settings.setValue(kMediaFolder, values.media_folder);
  settings.setValue(kGeometry, values.geometry);
}

}  // namespace quillory::gui
