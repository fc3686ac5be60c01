#include "titles/create_fcp_xml.h"

#include <array>
#include <stdexcept>
#include <vector>

#include <libxml/xmlsave.h>

#include "xml/failure.h"
#include "xml/read_xml.h"
#include "xml/xml_nodes.h"
#include "xml/xpath_query.h"
#include "titles/compose_title_text.h"
#include "titles/import_safe.h"
#include "titles/item_timing.h"
#include "titles/replace_file.h"
#include "titles/sequence_templates.h"

namespace quillory {
namespace {

constexpr const char* kTitleName = "Quillory Card";
constexpr std::size_t kAudioTracks = 4;
constexpr std::array<const char*, 5> kTitleTiming{"name", "duration", "out", "start", "end"};

std::string clip_label(std::size_t index, const ClipRecord& clip) {
  return "clip " + std::to_string(index + 1) + " \"" + clip.clip_name + "\" (" +
         xml::where(clip.xml) + ")";
}

xmlNode* required_child(xmlNode* parent, const char* name, const std::string& owner) {
  xmlNode* child = xml::first_child_element(parent, name);
  if (child == nullptr) fail(owner + " has no <" + name + ">");
  return child;
}

const TitleTemplate& choose_template(const std::vector<TitleTemplate>& templates,
                                     const std::optional<std::string>& name) {
  if (templates.empty()) {
    fail("no source document is open: open an xmeml export before creating titles");
  }
  if (name) {
    for (const auto& candidate : templates) {
      if (candidate.name == *name) return candidate;
    }
  }
  return templates.front();
}

// Copies `node` and every sibling after it into the document of `parent`, appending the copies
// as its last children. Returns the last element appended (null when none was).
xmlNode* append_copies(xmlNode* parent, xmlNode* first) {
  xmlNode* last_element = nullptr;
  for (xmlNode* source = first; source != nullptr; source = source->next) {
    xml::Node copy(xmlDocCopyNode(source, parent->doc, 1));
    if (!copy) throw std::bad_alloc();
    const bool is_element = copy->type == XML_ELEMENT_NODE;
    xmlNode* added = xmlAddChild(parent, copy.release());  // may merge and free a text node
    if (is_element) last_element = added;
  }
  return last_element;
}

// Appends a copy of `node`; a parsed fragment (a document) contributes its top-level nodes.
xmlNode* append_copy(xmlNode* parent, xmlNode* node) {
  if (node->type == XML_DOCUMENT_NODE || node->type == XML_HTML_DOCUMENT_NODE) {
    return append_copies(parent, node->children);
  }
  xml::Node copy(xmlDocCopyNode(node, parent->doc, 1));
  if (!copy) throw std::bad_alloc();
  return xmlAddChild(parent, copy.release());
}

bool is_blank(const xmlNode* node) {
  if (node->type != XML_TEXT_NODE || node->content == nullptr) return false;
  for (const xmlChar* c = node->content; *c != 0; ++c) {
    if (*c != ' ' && *c != '\t' && *c != '\n' && *c != '\r') return false;
  }
  return true;
}

// The empty sequence and the built-in title carry their own indentation while the copied clip
// items carry none. Dropping the blank text between elements lets the writer indent the whole
// document alike; text inside an element without child elements (a title made only of empty
// lines, say) is content and stays.
void remove_formatting_blanks(xmlNode* element) {
  bool has_child_element = false;
  for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
    has_child_element = has_child_element || child->type == XML_ELEMENT_NODE;
  }
  if (!has_child_element) return;
  for (xmlNode* child = element->children; child != nullptr;) {
    xmlNode* next = child->next;
    if (is_blank(child)) {
      xmlUnlinkNode(child);
      xmlFreeNode(child);
    } else if (child->type == XML_ELEMENT_NODE) {
      remove_formatting_blanks(child);
    }
    child = next;
  }
}

// The path of the source document the clips (else the document's own templates) come from.
std::string source_path(const std::vector<TitleTemplate>& templates,
                        const std::vector<ClipRecord>& clips) {
  std::vector<const xmlDoc*> documents;
  for (const auto& clip : clips) documents.push_back(clip.document.get());
  for (std::size_t i = 1; i < templates.size(); ++i) documents.push_back(templates[i].document.get());
  for (const xmlDoc* document : documents) {
    if (document != nullptr && document->URL != nullptr) {
      return reinterpret_cast<const char*>(document->URL);
    }
  }
  return "";
}

long long add_frames(long long position, long long length, const std::string& clip) {
  long long end = 0;
  if (__builtin_add_overflow(position, length, &end)) {
    fail(clip + " does not fit in the sequence: its duration " + std::to_string(length) +
         " at frame " + std::to_string(position) + " is out of range");
  }
  return end;
}

// One run of title creation over an output document built from the empty sequence.
class SequenceBuilder {
 public:
  SequenceBuilder(const std::vector<TitleTemplate>& templates, const TitleSettings& settings,
                  LineSink& out)
      : settings_(settings), out_(out),
        template_(choose_template(templates, settings.template_name)) {
    xml::ParsedXml parsed = xml::read_xml(empty_sequence_xml(), "empty sequence", 0);
    if (!parsed.document || !parsed.diagnostics.empty()) {
      fail("the built-in empty sequence does not parse");
    }
    document_ = std::move(parsed.document);
    sequence_ = xml::XPathQuery("//sequence").first(xml::as_node(document_.get()));
    const std::string owner = "the built-in empty sequence";
    xml::set_text(required_child(sequence_, "name", owner), settings_.sequence_name);
    xmlNode* rate = required_child(sequence_, "rate", owner);
    xml::set_text(required_child(rate, "ntsc", owner), settings_.ntsc);
    xml::set_text(required_child(rate, "timebase", owner), std::to_string(settings_.timebase));
    // Every title is a copy of the chosen template. Copying it once into the output document
    // without its formatting blanks halves the nodes each title copy makes.
    title_prototype_.reset(xmlNewDocNode(document_.get(), nullptr, BAD_CAST "titles", nullptr));
    append_copy(title_prototype_.get(), template_.xml);
    remove_formatting_blanks(title_prototype_.get());
    if (settings_.tolerant) complete_title_prototype();
    video_tracks_ = xml::XPathQuery("media/video/track").all(sequence_);
    audio_tracks_ = xml::XPathQuery("media/audio/track").all(sequence_);
    if (video_tracks_.size() < 2 || audio_tracks_.size() < kAudioTracks) {
      fail("the built-in empty sequence lacks its tracks");
    }
  }

  // Returns where the last clip ends.
  long long place_all_clips(const std::vector<ClipRecord>& clips) {
    long long position = 0;
    for (std::size_t i = 0; i < clips.size(); ++i) position = place_clip(i, clips[i], position);
    return position;
  }

  TitleSequence finish() {
    remove_formatting_blanks(xmlDocGetRootElement(document_.get()));
    return {std::move(document_), std::move(assumptions_), {}};
  }

 private:
  long long place_clip(std::size_t index, const ClipRecord& clip, long long position) {
    const std::string label = clip_label(index, clip);
    std::vector<std::string>& made = assumptions_.emplace_back();
    out_.line("Clip " + std::to_string(index + 1) + " at " + std::to_string(position));
    xmlNode* video_item = video_clip_item_.first(clip.xml);
    const std::vector<xmlNode*> audio_items = audio_clip_items_.all(clip.xml);
    const long long length =
        clip_length(clip.xml, video_item, audio_items.empty() ? nullptr : audio_items.front(),
                    label, settings_.tolerant, made);
    out_.line("  " + clip.clip_name + ", " + clip.file_name + ", " + std::to_string(length));
    const std::string start = std::to_string(position);
    const long long end_frame = add_frames(position, length, label);
    const std::string end = std::to_string(end_frame);
    const std::string title_text = compose_title_text(clip, settings_.lines);

    if (video_item == nullptr) {
      assume_or_fail(settings_.tolerant, made,
                     label + " has no video clip item (media/video/track/clipitem)",
                     "no video clip item, video track 1 left empty over its span");
    }
    if (audio_items.size() > audio_tracks_.size()) {
      assume_or_fail(settings_.tolerant, made,
                     label + " has " + std::to_string(audio_items.size()) +
                         " audio clip items; the sequence has 4 audio tracks, so the audio clip "
                         "item " + xml::where(audio_items[kAudioTracks]) +
                         " has no track to go to",
                     std::to_string(audio_items.size()) + " audio clip items, audio tracks " +
                         std::to_string(audio_tracks_.size() + 1) + " to " +
                         std::to_string(audio_items.size()) + " added");
      add_audio_tracks(audio_items.size());
    }

    UntimedItems untimed;
    if (video_item != nullptr) {
      xmlNode* placed = append_copy(video_tracks_[0], video_item);
      untimed.add(set_item_timing(placed, start, end,
                                  label + ": its video clip item " + xml::where(video_item),
                                  settings_.tolerant),
                  0);
      remove_link_indexes(placed);
      if (settings_.timecode_reader) {
        const xml::Document filter =
            xml::read_html_fragment(tcr_filter_xml(), "Timecode Reader");
        remove_formatting_blanks(xml::as_node(filter.get()));
        append_copy(placed, xml::as_node(filter.get()));
      }
    }
    for (std::size_t k = 0; k < audio_items.size(); ++k) {
      xmlNode* audio = append_copy(audio_tracks_[k], audio_items[k]);
      untimed.add(set_item_timing(audio, start, end,
                                  label + ": its audio clip item " + xml::where(audio_items[k]),
                                  settings_.tolerant),
                  k + 1);
      remove_link_indexes(audio);
    }
    untimed.describe(made);
    made.insert(made.end(), title_assumptions_.begin(), title_assumptions_.end());
    place_title(label, title_text, start, end, std::to_string(length));
    return end_frame;
  }

  // Audio tracks for `count` audio clip items, shaped like the empty sequence's own: enabled,
  // unlocked, output channels alternating 1, 2.
  void add_audio_tracks(std::size_t count) {
    while (audio_tracks_.size() < count) {
      xml::Node track(xmlNewDocNode(document_.get(), nullptr, BAD_CAST "track", nullptr));
      if (!track) throw std::bad_alloc();
      const char* channel = audio_tracks_.size() % 2 == 0 ? "1" : "2";
      for (const auto& [name, value] : {std::pair{"enabled", "TRUE"}, std::pair{"locked", "FALSE"},
                                        std::pair{"outputchannelindex", channel}}) {
        xmlNewTextChild(track.get(), nullptr, BAD_CAST name, BAD_CAST value);
      }
      audio_tracks_.push_back(xmlAddNextSibling(audio_tracks_.back(), track.release()));
    }
  }

  // Tolerant reading gives the title prototype the children every title's timing sets.
  void complete_title_prototype() {
    xmlNode* title = title_prototype_->children;
    while (title != nullptr && title->type != XML_ELEMENT_NODE) title = title->next;
    if (title == nullptr || !xmlStrEqual(title->name, BAD_CAST "generatoritem")) return;
    std::string added;
    for (const char* name : kTitleTiming) {
      if (xml::first_child_element(title, name) != nullptr) continue;
      xmlNewChild(title, nullptr, BAD_CAST name, nullptr);
      added += (added.empty() ? "<" : "/<") + std::string(name) + ">";
    }
    if (!added.empty()) {
      title_assumptions_.push_back("title template \"" + template_.name + "\" has no " + added +
                                   ", added");
    }
  }

  // The placed items bring their links from the source document; the track and clip indexes
  // in them point into that document's sequences, so they go.
  void remove_link_indexes(xmlNode* item) {
    for (xmlNode* node : link_indexes_.all(item)) {
      xmlUnlinkNode(node);
      xmlFreeNode(node);
    }
  }

  // A child the title's timing sets; strict reading stops on a template that lacks it.
  xmlNode* title_child(xmlNode* title, const char* name, const std::string& owner) {
    xmlNode* child = xml::first_child_element(title, name);
    if (child == nullptr) throw IncompleteInput("quillory: " + owner + " has no <" + name + ">");
    return child;
  }

  void place_title(const std::string& clip, const std::string& text, const std::string& start,
                   const std::string& end, const std::string& length) {
    const std::string owner = "the title template \"" + template_.name + "\" (for " + clip + ")";
    xmlNode* title = append_copies(video_tracks_[1], title_prototype_->children);
    if (title == nullptr || !xmlStrEqual(title->name, BAD_CAST "generatoritem")) {
      fail(owner + " holds no <generatoritem>");
    }
    remove_link_indexes(title);
    xml::set_text(title_child(title, "name", owner), kTitleName);
    xml::set_text(title_child(title, "duration", owner), length);
    xml::set_text(title_child(title, "out", owner), length);
    xml::set_text(title_child(title, "start", owner), start);
    xml::set_text(title_child(title, "end", owner), end);

    std::optional<std::size_t> text_value;
    if (template_.type == "Text") text_value = 0;
    if (template_.type == "Outline Text") text_value = 1;
    if (!text_value) return;
    const std::vector<xmlNode*> values = effect_values_.all(title);
    if (values.size() <= *text_value) {
      fail(owner + " has " + std::to_string(values.size()) +
           " effect/parameter/value elements; a \"" + template_.type + "\" title needs " +
           std::to_string(*text_value + 1));
    }
    xml::set_text(values[*text_value], text);
  }

  const TitleSettings& settings_;
  LineSink& out_;
  const TitleTemplate& template_;
  xml::Document document_;
  xmlNode* sequence_ = nullptr;
  std::vector<xmlNode*> video_tracks_;
  std::vector<xmlNode*> audio_tracks_;
  xml::XPathQuery video_clip_item_{"media/video/track/clipitem"};
  xml::XPathQuery audio_clip_items_{"media/audio/track/clipitem"};
  xml::XPathQuery effect_values_{"effect/parameter/value"};
  xml::XPathQuery link_indexes_{
      "descendant-or-self::link/mediatype | descendant-or-self::link/trackindex | "
      "descendant-or-self::link/clipindex | descendant-or-self::link/groupindex"};
  xml::Node title_prototype_;
  std::vector<std::string> title_assumptions_;  // what completing the prototype took
  std::vector<std::vector<std::string>> assumptions_;  // per clip placed
};

}  // namespace

TitleSequence build_title_sequence(const std::vector<TitleTemplate>& templates,
                                   const std::vector<ClipRecord>& clips,
                                   const TitleSettings& settings, LineSink& out) {
  SequenceBuilder builder(templates, settings, out);
  const long long duration = builder.place_all_clips(clips);
  TitleSequence sequence = builder.finish();
  if (settings.import_safe) {
    const ImportSafeRun run{source_path(templates, clips), settings.sequence_name, duration};
    sequence.warnings = make_import_safe(sequence.document.get(), clips, run);
  }
  return sequence;
}

AssumptionReport create_fcp_xml(const std::vector<TitleTemplate>& templates,
                                const std::vector<ClipRecord>& clips,
                                const TitleSettings& settings,
                                const std::optional<std::string>& output_path, LineSink& out) {
  if (!output_path) {
    fail("no output folder is known: set HOME (or XDG_DATA_HOME to an absolute path) so that "
         "titles can be written to its Ferncroft folder");
  }
  const TitleSequence sequence = build_title_sequence(templates, clips, settings, out);
  replace_file(*output_path, [&sequence](int fd) {
    xmlSaveCtxt* save = xmlSaveToFd(fd, "UTF-8", XML_SAVE_FORMAT);
    if (save == nullptr) return false;
    const long written = xmlSaveDoc(save, sequence.document.get());
    return xmlSaveClose(save) >= 0 && written >= 0;
  });
  AssumptionReport report = report_assumptions(templates, clips, sequence.assumptions);
  report.warnings.insert(report.warnings.begin(), sequence.warnings.begin(),
                         sequence.warnings.end());
  return report;
}

}  // namespace quillory
