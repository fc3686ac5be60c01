#include <stdexcept>
#include <string_view>

#include "xml/failure.h"
#include "source/media_file_record.h"
#include "xml/xml_nodes.h"
#include "xml/xpath_query.h"

namespace quillory {
namespace {

constexpr std::string_view kRedLocalTimeKey = "com.red.ltplugin.localTime";

struct FileQueries {
  xml::XPathQuery reel_name{".//reel/name"};
  xml::XPathQuery timecode_string{".//timecode/string"};
};

[[noreturn]] void fail(const xmlNode* node, const std::string& what) {
  quillory::fail(what + " (" + xml::where(node) + ")");
}

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

MetadataEntry read_entry(const xmlNode* metadata) {
  const xmlNode* key = xml::first_child_element(metadata, "key");
  const xmlNode* value = xml::first_child_element(metadata, "value");
  if (key == nullptr) fail(metadata, "a <metadata> entry has no <key>");
  if (value == nullptr) fail(metadata, "a <metadata> entry has no <value>");
  return {metadata, xml::text_content(key), xml::text_content(value)};
}

DateTime read_date_time(const MetadataEntry& entry) {
  auto time = parse_date_time(entry.value);
  if (!time) {
    fail(entry.element, "the metadata \"" + entry.key + "\" holds \"" + entry.value +
                            "\", which is not a date (expected e.g. 2010-03-13T14:05:09, "
                            "2010-03-13 14:05:09 +0100 or 20100313)");
  }
  return *time;
}

// One two-character piece of a clock text such as "140509", read as a leading integer.
int clock_piece(const std::string& clock, std::size_t first) {
  if (first >= clock.size()) return 0;
  return static_cast<int>(xml::leading_integer(clock.substr(first, 2)));
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
  const DateTime date = read_date_time(local_date);
  const std::string& clock = local_time->value;
  auto time = make_date_time(date.year, date.month, date.day, clock_piece(clock, 0),
                             clock_piece(clock, 2), clock_piece(clock, 4));
  if (!time) {
    fail(local_time->element, "the RED local time \"" + clock + "\" is not a valid time of day");
  }
  return time;
}

std::optional<DateTime> recording_time(const xmlNode* file) {
  std::vector<MetadataEntry> entries;
  for (const xmlNode* child = file->children; child != nullptr; child = child->next) {
    if (child->type == XML_ELEMENT_NODE && child->ns == nullptr &&
        xmlStrEqual(child->name, BAD_CAST "metadata")) {
      entries.push_back(read_entry(child));
    }
  }
  std::optional<DateTime> time;
  for (const auto& entry : entries) {
    const std::string_view part = last_key_part(entry.key);
    if (part == "creationdate" || part == "creationtime" || part == "lastupdate") {
      time = read_date_time(entry);
    } else if (part == "localDate") {
      if (auto local = red_local_date_time(entry, entries)) time = local;
    }
  }
  return time;
}

MediaFileRecord catalogue(xmlNode* file, FileQueries& queries) {
  const xmlNode* name = xml::first_child_element(file, "name");
  if (name == nullptr) fail(file, "a <file> definition has no <name>");
  MediaFileRecord record;
  record.id = xml::attribute(file, "id");
  record.name = xml::text_content(name);
  record.reel = xml::text_content(queries.reel_name.first(file));
  record.frame_string = xml::text_content(queries.timecode_string.first(file));
  record.time = recording_time(file);
  return record;
}

}  // namespace

std::vector<MediaFileRecord> get_files_info(const std::vector<xmlNode*>& files, LineSink& out) {
  FileQueries queries;
  std::vector<MediaFileRecord> records;
  for (xmlNode* file : files) {
    if (file->children == nullptr) continue;  // a reference to a definition elsewhere
    records.push_back(catalogue(file, queries));
    const MediaFileRecord& record = records.back();
    out.line(record.id ? *record.id : "(no id)");
    out.line("\"" + record.reel + "\"");
    out.line(record.time ? to_string(*record.time) : "(no time)");
    out.line("----------");
  }
  return records;
}

}  // namespace quillory
