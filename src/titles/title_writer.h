#pragma once
// Writes the titles of a run into the track being filled. Titles differ only in a few fields,
// so libxml2 writes the first one and every title is that text with its own fields.

#include <optional>
#include <string>

#include "titles/import_safe.h"
#include "titles/stream_writer.h"
#include "titles/title_prototype.h"

namespace quillory {

class TitleWriter {
 public:
  // With `import_safe`, each title gets its own id, rate and UUID.
  TitleWriter(const TitlePrototype& title, ImportSafeOutput* import_safe)
      : title_(title), import_safe_(import_safe) {}

  // Title `number` (from 1) of the run, holding `text`, over `place` on the sequence.
  void write(StreamWriter& out, const TimeRange& place, const std::string& text,
             std::size_t number);

 private:
  const TitlePrototype& title_;
  ImportSafeOutput* import_safe_;
  std::optional<TitlePrototype::Text> text_;
};

}  // namespace quillory
