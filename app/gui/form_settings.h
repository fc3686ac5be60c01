#pragma once
// What the window remembers between launches: the title line set-up, the Timecode Reader
// checkbox, the rate, whether incomplete exports are accepted and output is import-safe, the
// folder of the last document, the preview's media folder and the window's geometry.

#include <QByteArray>
#include <QSettings>
#include <QString>
#include <array>

namespace quillory::gui {

struct FormSettings {
  std::array<QString, 5> labels;
  std::array<QString, 5> choices;
  bool timecode_reader = false;
  QString rate;  // a frame-rate type; empty for the document's first rate
  bool tolerant = false;
  bool import_safe = false;
  QString last_folder;
  QString media_folder;  // where the preview looks for media by name; "" for nowhere
  QByteArray geometry;
};

// The set-up of a first launch: the core's default lines.
FormSettings default_form_settings();

// Anything missing or no longer valid (a choice that is not a choice title) takes its default.
FormSettings load_form_settings(const QSettings& settings);
void save_form_settings(QSettings& settings, const FormSettings& values);

}  // namespace quillory::gui
