#pragma once
// What a run of title creation is asked for: the host fills these from its own controls or
// options and hands them to create_fcp_xml.

#include <optional>
#include <string>

#include "startup/frame_rates.h"
#include "titles/compose_title_text.h"

namespace quillory {

struct TitleSettings {
  // The template whose name this is; none, or a name no template has: the first template.
  std::optional<std::string> template_name;
  std::string sequence_name;
  // The new sequence's rate.
  FrameRate rate{30, true};
  LineSettings lines = default_line_settings();
  bool timecode_reader = false;
  // Take clips that lack something with a stated assumption instead of stopping.
  bool tolerant = false;
  // Write what importers that resolve ids read as written: titles with ids, rate and UUIDs of
  // their own, each media file defined where it is first used.
  bool import_safe = false;
  // The digest of the source document's bytes, from which import-safe UUIDs derive.
  std::string source_digest;

  bool operator==(const TitleSettings&) const = default;

  void set_rate(const RateRecord& row) { rate = row.frame_rate(); }
};

}  // namespace quillory
