#pragma once
// The chosen title template, copied once into the output document without its formatting
// blanks, and the title of each clip made from that copy.

#include <functional>
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

  // What varies from one title to the next, and what the text of a title is made of.
  struct Fields {
    std::string start, end, length, text;
    std::string id, uuid;  // import-safe output only
  };
  class Text;

  // The text that libxml2 writes for every title at `level` of indentation (a line break and
  // the indentation before each node), written once and cut where the fields go. `finish`
  // changes the title's copy before it is written (import-safe output sets its rate); with
  // `own_ids` each title's id, master clip id and itemhistory UUID become fields too.
  Text serialize(int level, bool own_ids, const std::function<void(xmlNode*)>& finish) const;

 private:
  xmlNode* generator() const;
  static xmlNode* last_element(const std::vector<xml::Node>& nodes);
  std::string owner(const std::string& clip) const;
  std::optional<std::size_t> text_value() const;

  const TitleTemplate& template_;
  xml::Node copy_;  // holds the template's top-level nodes as its children
  std::string completed_;
};

class TitlePrototype::Text {
 public:
  // The text of one title with `fields` in their places; text is escaped as libxml2 escapes it.
  std::string join(const Fields& fields) const;

 private:
  friend class TitlePrototype;
  enum class Field { Start, End, Length, Text, Id, Uuid };
  std::vector<std::string> pieces_;  // one more than fields_
  std::vector<Field> fields_;
};

}  // namespace quillory
