#pragma once
// FCPXML titles: each a <title> anchored to the clip it lies over, made from a template (a
// <title> of the source, or Final Cut Pro's Basic Title drawn as the built-in xmeml title is)
// with one text-style run holding its text and a text style of its own.

#include <string>

#include "source/clip_record.h"
#include "startup/rational_time.h"
#include "titles/fcpxml_document_writer.h"
#include "xml/xml_handles.h"

namespace quillory {

// Final Cut Pro's Basic Title effect.
inline constexpr const char* kBasicTitleUid =
    ".../Titles.localized/Bumper:Opener.localized/Basic Title.localized/Basic Title.moti";

// The text of a composed title as a <text> holds it: each carriage return a line feed, and
// none after the last line.
std::string fcpxml_title_text(const std::string& composed);

// The id of the effect the titles made from `chosen` name in `output`: a source template's
// own effect (copied with the resources the document refers to); for the built-in template
// the source's Basic Title effect where it has one, else a new one added to `output`.
std::string fcpxml_title_effect(const TitleTemplate& chosen, FcpxmlDocument& output);

// Where a title lies on the timeline of the item it is anchored to.
struct FcpxmlTitlePlace {
  RationalTime offset;    // on the parent's local timeline
  RationalTime duration;
  long long lane = 1;
};

class FcpxmlTitleMaker {
 public:
  // Titles from `chosen` naming the effect `effect_id`, over a sequence `frame_height` pixels
  // high (the built-in template's Position and font size scale with it). Each title's text
  // style takes a fresh id of `ids`.
  FcpxmlTitleMaker(const TitleTemplate& chosen, std::string effect_id, int frame_height,
                   FcpxmlIds& ids);

  // A new title of `doc`, named "Quillory Card", showing the composed text `text`.
  xml::Node make(xmlDoc* doc, const std::string& text, const FcpxmlTitlePlace& place) const;

 private:
  void add_basic_title_look(xmlNode* title, xmlDoc* doc) const;

  const xmlNode* template_;  // null: the Basic Title
  std::string effect_id_;
  int frame_height_;
  FcpxmlIds& ids_;
};

// Puts `item` among the children of `parent` where the DTD orders anchored items: after the
// parent's note, timing, adjustments and anchored items, before its markers, keywords,
// ratings, filters and metadata. Returns it.
xmlNode* anchor_item(xmlNode* parent, xml::Node item);

}  // namespace quillory
