#pragma once
// What the window's named controls hold at the moment of a run, as one plain value. The
// window fills it from its widgets, the command line from its options; the controller turns
// it into the settings the core takes.

#include <optional>
#include <string>

#include "titles/compose_title_text.h"

namespace quillory {

// A checkbox's state: 1 on, 0 off, -1 mixed. Only "on" switches anything on.
inline constexpr int kCheckboxOn = 1;

// The title of the source menu's first item: the document's master clips rather than a
// sequence.
inline constexpr const char* kMasterClips = "Master Clips";

struct Form {
  // "Source:": none for its first item, the master clips; else the name of the top-level
  // sequence whose shots are titled, whatever that name is ("Master Clips" too).
  std::optional<std::string> sourcePopup;
  // The selected template's title; none, or a title no template has: the first template.
  std::optional<std::string> templatePopup;
  // The selected frame-rate type; none, or a type no rate has: the document's first rate.
  std::optional<std::string> ratePopup;
  std::string nameField;
  // (line1Label, line1Popup) to (line5Label, line5Popup).
  LineSettings lines = default_line_settings();
  int tcrCheckbox = 0;
  int tolerantCheckbox = 0;    // "Accept incomplete exports"
  int importSafeCheckbox = 0;  // "Import-safe output"

  bool operator==(const Form&) const = default;
};

// What the window shows of the open document: an icon with the document's whole path as its
// tool tip, and the document's file name. The icon stays hidden until a document opens.
struct FileDisplay {
  bool xmlIconHidden = true;
  std::string xmlIconToolTip;
  std::string xmlFileName;
};

}  // namespace quillory
