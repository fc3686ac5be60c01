#pragma once
// The window controller both hosts drive: it owns the open document, turns what the form
// holds into the settings of a run, and decides what may be created. The window fills the
// form from its widgets, the command line from its options; neither maps settings itself.

#include <optional>
#include <string>
#include <vector>

#include "form/form.h"
#include "source/assumption_report.h"
#include "source/get_info_from_clips.h"
#include "startup/startup.h"
#include "titles/destination.h"
#include "titles/title_settings.h"
#include "titles/title_style.h"
#include "titles/video_format.h"
#include "source/line_sink.h"

namespace quillory {

// How an open went: for a document not read whole, what went wrong and where, and whether
// tolerant reading would take it.
struct OpenOutcome {
  OpenStatus status = OpenStatus::Unreadable;
  std::string error;
  bool incomplete = false;
  std::vector<std::string> sequences;  // the names of the document's top-level sequences
};

// Why the document at `path` was not read, for an open that came out NotXmeml:
// "PATH is not an xmeml document (its first node is not <xmeml>)", or what stands before it.
std::string not_xmeml_message(const std::string& path, const OpenOutcome& outcome);

class Controller {
 public:
  explicit Controller(OutputPaths paths);

  // Opens the document at `path`, reading it as the form's "Accept incomplete exports" asks,
  // its master clips or the shots of the sequence its "Source:" names (NoSequence, changing
  // nothing, when the document has none of that name).
  // A document that cannot be loaded, or whose first node is not <xmeml>, changes nothing.
  // Otherwise the display shows it and its lists replace the previous document's, also when a
  // clip or file definition breaks it off (Broken): then what the clips before it gave is
  // kept, to be shown, but nothing can be created from it.
  OpenOutcome get_info_from_clips(const std::string& path, const Form& form, LineSink& out);

  // The open document's clips are the shots of one of its sequences.
  bool titles_over_sequence() const { return source_.sequence != nullptr; }

  // Titles are made only from a document that opened whole.
  bool can_create() const { return source_.status == OpenStatus::Opened; }

  // Writes the titles of the open document as `form` asks, to `output_path` or else to the
  // Ferncroft folder's file. Throws when nothing can be created (see can_create), when the
  // output is the open document (see refuse_source), and as create_fcp_xml throws; the
  // previous output file then stays as it was.
  AssumptionReport create_fcp_xml(const Form& form, LineSink& out,
                                  const std::optional<std::string>& output_path = {}) const;
  // The same, written to the open `descriptor` (standard output) as it is made.
  AssumptionReport create_fcp_xml(const Form& form, LineSink& out, int descriptor) const;

  // What a run with `form` asks of the core, each choice resolved: the template the form
  // names, else the first; the rate it names, else the document's first.
  TitleSettings title_settings(const Form& form) const;

  // The rates the window's rate menu offers: each rate the document's clips have, once, or
  // every rate when they have none (or before a document is open).
  std::vector<std::string> rate_choices() const;
  // The rate a run takes when the form names none: the document's first.
  std::string default_rate() const;

  // How the template the form chooses draws its text, and the frame the titles lie over.
  TitleStyle title_style(const Form& form) const;
  FrameSize frame_size() const { return frame_size_; }

  // What tolerant reading assumed while opening.
  AssumptionReport opening_report() const;

  // The name a new sequence takes from the open document: its file name without the
  // extension.
  std::string document_sequence_name() const;

  // Throws when writing to `path` would replace the open document: the user's only copy of it.
  void refuse_source(const std::string& path) const;
  // Throws when a copy of the titles may not go to `path`: the open document, or the file the
  // runs write, which the copy is made from.
  void refuse_copy_target(const std::string& path) const;
  // A path in `folder` for a copy of the titles that names no file yet: the sequence name
  // `form` gives plus " titles", numbered from 2 when taken ("dailies titles 2.xml").
  std::string copy_path(const std::string& folder, const Form& form) const;

  // Where a run writes unless told: the Ferncroft folder's file of the open document's format.
  const std::optional<std::string>& default_output() const;

  // The open document is FCPXML.
  bool fcpxml() const { return source_.format == SourceFormat::Fcpxml; }

  // The open document's path; empty before one opens.
  const std::string& document_path() const { return document_path_; }

  const OpenedSource& source() const { return source_; }
  FileDisplay display() const;
  const OutputPaths& paths() const { return paths_; }

 private:
  void require_creatable() const;
  AssumptionReport create(const Form& form, const Destination& to, LineSink& out) const;
  // The name of the template a run with `selected` uses.
  std::optional<std::string> template_used(const std::optional<std::string>& selected) const;

  OutputPaths paths_;
  OpenedSource source_;
  std::string document_path_;
  FrameSize frame_size_;  // of the open document's sequence, found once: every preview draws on it
};

}  // namespace quillory
