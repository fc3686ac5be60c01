#pragma once
// Import-safe output. In xmeml the first element carrying an id defines it, and a later element
// with the same id is read as a reference to the first, whatever it holds; importers resolve
// ids that way. These changes make such a reader get what was written: every title an id, a
// rate and a UUID of its own and a source range from 0, each media file defined where it is
// first used, the sequence's real duration and a UUID of its own. Editing programs also need
// the sequence's video format and timecode, which every one of them writes, to size the
// sequence and number its frames rather than guess.

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "source/clip_record.h"
#include "titles/video_format.h"
#include "xml/xml_handles.h"

namespace quillory {

struct ImportSafeRun {
  std::string source_digest;  // of the source document's bytes, which the UUIDs derive from
  std::string sequence_name;  // likewise
  RationalTime duration;       // the end of the last clip, in the sequence's frames
};

// Applied to the parts of the output in the order they are written.
class ImportSafeOutput {
 public:
  ImportSafeOutput(const std::vector<ClipRecord>& clips, ImportSafeRun run);
  // The full <file> definitions of `source` are copied where the output refers to one first.
  void add_definitions(const xmlDoc* source);

  // The sequence's duration and UUID, and its video format and timecode where it has none;
  // `outline` (the document before any item is added) is what every later id is checked
  // against first.
  void prepare_sequence(xmlNode* sequence, xmlNode* outline);
  // The copy of the title template that every title is written from: its rate becomes the
  // sequence's, its <in> 0 (a template may start anywhere in its source, which would put a
  // title's <out>, its length, before its <in>), and its ids are kept for checking each title's.
  void prepare_title_template(xmlNode* title);
  // Title `number` (from 1) of the run: its id (and master clip id), and its itemhistory UUID.
  static std::string title_id(std::size_t number);
  std::string title_uuid(std::size_t number) const;
  // Title `number` is about to be written: its ids are checked.
  void note_title(std::size_t number);
  // An item about to be written: its files defined where first used, its ids checked.
  void prepare_item(xmlNode* item);

  // A warning line for every id that the document still repeats.
  const std::vector<std::string>& warnings() const { return warnings_; }

 private:
  void add_format(xmlNode* sequence, const xmlNode* rate) const;
  static void add_timecode(xmlNode* rate);
  void define_files(xmlNode* item);
  void check_ids(xmlNode* item);
  void note_id(const std::string& id, const std::string& who);

  ImportSafeRun run_;
  VideoFormat format_;  // of the clips' media: the sequence's where it states none
  std::unordered_set<const xmlDoc*> read_;                        // the sources of definitions_
  std::unordered_map<std::string, const xmlNode*> definitions_;  // the source's, first per id
  std::unordered_set<std::string> defined_;                      // ids the output has defined
  std::unordered_map<std::string, std::string> first_with_id_;   // id: who carried it first
  const xmlNode* sequence_rate_ = nullptr;  // the sequence's <rate>, which every title takes
  // The ids inside a title besides its own, with who carries them: the same in every title.
  std::vector<std::pair<std::string, std::string>> title_inner_ids_;
  std::string title_;  // who a title is, in a warning
  std::vector<std::string> warnings_;
};

}  // namespace quillory
