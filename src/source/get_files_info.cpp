#include <stdexcept>
#include <string_view>

#include "source/incomplete_input.h"
#include "source/media_file_record.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

constexpr std::string_view kRedLocalTimeKey = "com.red.ltplugin.localTime";

std::string line_of(const xmlNode* node) { return std::to_string(xmlGetLineNo(node)); }

// The text after the last "." of a key, with empty trailing parts disregarded.
std::string_view last_key_part(std::string_view key) {
  while (!key.empty() && key.back() == '.') key.remove_suffix(1);
  const auto dot = key.rfind('.');
  return dot == std::string_view::npos ? key : key.substr(dot + 1);
}

struct MetadataEntry {
  const xmlNode* element;
  std::string key;
  std::string value;
};

// One two-character piece of a clock text such as "140509", read as a leading integer.
int clock_piece(const std::string& clock, std::size_t first) {
  if (first >= clock.size()) return 0;
  return static_cast<int>(xml::leading_integer(clock.substr(first, 2)));
}

// Reads the file definitions one at a time. Where a definition breaks a rule, strict reading
// stops; tolerant reading notes the assumption it makes in the record.
class FileReader {
 public:
  explicit FileReader(bool tolerant) : tolerant_(tolerant) {}

  MediaFileRecord read(xmlNode* file) {
    MediaFileRecord record;
    record.xml = file;
    made_ = &record.assumptions;
    const xmlNode* name = xml::first_child_element(file, "name");
    if (name == nullptr) {
      breach(file, "a <file> definition has no <name>",
             "its <file> at line " + line_of(file) + " has no <name>, file name left empty");
    }
    record.id = xml::attribute(file, "id");
    record.name = xml::text_content(name);
    record.reel = xml::text_content(xml::first_descendant(file, "name", "reel"));
    record.frame_string = xml::text_content(xml::first_descendant(file, "string", "timecode"));
    record.time = recording_time(file);
    record.path_url = xml::text_content(xml::first_child_element(file, "pathurl"));
    return record;
  }

 private:
  void breach(const xmlNode* node, const std::string& error, std::string assumption) {
    assume_or_fail(tolerant_, *made_, error + " (" + xml::where(node) + ")", std::move(assumption));
  }

  void skip(const xmlNode* entry, const std::string& error, const std::string& why) {
    breach(entry, error, "its <file>'s <metadata> at line " + line_of(entry) + " " + why +
                             ", entry skipped");
  }

  // The file's metadata entries in order; tolerant reading leaves out those without a key or
  // a value.
  std::vector<MetadataEntry> entries(const xmlNode* file) {
    std::vector<MetadataEntry> entries;
    for (const xmlNode* child = file->children; child != nullptr; child = child->next) {
      if (!xml::is_element(child, "metadata")) continue;
      const xmlNode* key = xml::first_child_element(child, "key");
      const xmlNode* value = xml::first_child_element(child, "value");
      if (key == nullptr) {
        skip(child, "a <metadata> entry has no <key>", "has no <key>");
      } else if (value == nullptr) {
        skip(child, "a <metadata> entry has no <value>", "has no <value>");
      } else {
        entries.push_back({child, xml::text_content(key), xml::text_content(value)});
      }
    }
    return entries;
  }

  std::optional<DateTime> read_date_time(const MetadataEntry& entry) {
    auto time = parse_date_time(entry.value);
    if (!time) {
      skip(entry.element,
           "the metadata \"" + shown(entry.key) + "\" holds \"" + shown(entry.value) +
               "\", which is not a date (expected e.g. 2010-03-13T14:05:09, "
               "2010-03-13 14:05:09 +0100 or 20100313)",
           "holds \"" + shown(entry.value) + "\", not a date");
    }
    return time;
  }

  // A RED camera writes its local date and time of day as two entries of the same file.
  std::optional<DateTime> red_local_date_time(const MetadataEntry& local_date,
                                              const std::vector<MetadataEntry>& entries) {
    const MetadataEntry* local_time = nullptr;
    for (const auto& entry : entries) {
      if (entry.key == kRedLocalTimeKey) {
        local_time = &entry;
        break;
      }
    }
    if (local_time == nullptr) return std::nullopt;
    const auto date = read_date_time(local_date);
    if (!date) return std::nullopt;
    const std::string& clock = local_time->value;
    auto time = make_date_time(date->year, date->month, date->day, clock_piece(clock, 0),
                               clock_piece(clock, 2), clock_piece(clock, 4));
    if (!time) {
      skip(local_time->element,
           "the RED local time \"" + shown(clock) + "\" is not a valid time of day",
           "holds \"" + shown(clock) + "\", not a valid time of day");
    }
    return time;
  }

  std::optional<DateTime> recording_time(const xmlNode* file) {
    const std::vector<MetadataEntry> all = entries(file);
    std::optional<DateTime> time;
    for (const auto& entry : all) {
      const std::string_view part = last_key_part(entry.key);
      std::optional<DateTime> given;
      if (part == "creationdate" || part == "creationtime" || part == "lastupdate") {
        given = read_date_time(entry);
      } else if (part == "localDate") {
        given = red_local_date_time(entry, all);
      }
      if (given) time = given;
    }
    return time;
  }

  bool tolerant_;
  std::vector<std::string>* made_ = nullptr;
};

}  // namespace

std::vector<MediaFileRecord> get_files_info(const std::vector<xmlNode*>& files, LineSink& out,
                                            bool tolerant) {
  FileReader reader(tolerant);
  std::vector<MediaFileRecord> records;
  for (xmlNode* file : files) {
    if (file->children == nullptr) continue;  // a reference to a definition elsewhere
    records.push_back(reader.read(file));
    const MediaFileRecord& record = records.back();
    out.line(record.id ? *record.id : "(no id)");
    out.line("\"" + record.reel + "\"");
    out.line(record.time ? to_string(*record.time) : "(no time)");
    out.line("----------");
  }
  return records;
}

}  // namespace quillory
