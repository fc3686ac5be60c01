#pragma once
// The chosen title template, copied once into the output document without its formatting
// blanks, and the title of each clip made from that copy.

#include <string>
#include <vector>

#include "source/clip_record.h"
#include "xml/xml_handles.h"

namespace quillory {

class TitlePrototype {
 public:
  // `tolerant` reading gives the copy the children that every title's timing sets when the
  // template lacks them.
  TitlePrototype(const TitleTemplate& chosen, xmlDoc* output, bool tolerant);

  // Throws what a title made for `clip` (its label) would lack: a <generatoritem>, a child
  // that its timing sets (IncompleteInput), or the value that its text goes to.
  void check(const std::string& clip) const;

  // What tolerant reading added to the copy, as a phrase for each clip's warning; "" when
  // nothing.
  const std::string& completed() const { return completed_; }

  // The nodes of one title, the last of them its generatoritem: named, timed and holding
  // `text`. check() has passed for the clip.
  std::vector<xml::Node> make(const std::string& start, const std::string& end,
                              const std::string& length, const std::string& text) const;

 private:
  xmlNode* generator() const;
  std::string owner(const std::string& clip) const;
  std::optional<std::size_t> text_value() const;

  const TitleTemplate& template_;
  xml::Node copy_;  // holds the template's top-level nodes as its children
  std::string completed_;
};

}  // namespace quillory
