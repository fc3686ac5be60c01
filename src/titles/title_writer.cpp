#include "titles/title_writer.h"

namespace quillory {

void TitleWriter::write(StreamWriter& out, const TimeRange& place, const std::string& text,
                        std::size_t number) {
  if (!text_) {
    text_ = title_.serialize(out.child_level(), import_safe_ != nullptr, [this](xmlNode* title) {
      if (import_safe_ != nullptr) import_safe_->prepare_title_template(title);
    });
  }
  TitlePrototype::Fields fields{std::to_string(place.start.value()),
                                std::to_string(place.end().value()),
                                std::to_string(place.duration.value()), text, {}, {}};
  if (import_safe_ != nullptr) {
    fields.id = ImportSafeOutput::title_id(number);
    fields.uuid = import_safe_->title_uuid(number);
    import_safe_->note_title(number);
  }
  out.raw_child(text_->join(fields));
}

}  // namespace quillory
