#include "entry_points.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

#include "source/get_info_from_clips.h"
#include "source/parse_xml_file.h"
#include "titles/create_titles.h"
#include "titles/sequence_templates.h"
#include "xml/read_xml.h"

namespace quillory::fuzz {
namespace {

constexpr const char* kName = "fuzz.xml";

std::string text(const std::uint8_t* data, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

// Parsing the built-in title is the same work for every input: done once.
const TitleTemplate& built_in() {
  static const TitleTemplate title = built_in_template();
  return title;
}

OpenedSource opened(const std::string& bytes, bool tolerant,
                    const std::optional<std::string>& sequence = {}) {
  NullSink out;
  try {
    return read_loaded_source(parse_xml_bytes(bytes, kName, out), built_in(), tolerant, out,
                              sequence);
  } catch (const std::exception&) {
    return {};
  }
}

// A folder of the process's own for the files that runs write, removed at exit.
const std::string& output_path() {
  static const std::string path = [] {
    std::string folder = (std::filesystem::temp_directory_path() / "quillory-fuzz-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no temporary folder");
    static const std::string removed = folder;
    std::atexit([] { std::filesystem::remove_all(removed); });
    return folder + "/titles.xml";
  }();
  return path;
}

// What a run wrote must be a well-formed document as it stands: parsed again without
// recovery, it gives no diagnostic. Anything else is a finding, reported as a crash.
void require_well_formed(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  const auto parsed = xml::read_xml(bytes.str(), path, 0);
  if (parsed.document && parsed.diagnostics.empty()) return;
  for (const auto& diagnostic : parsed.diagnostics) {
    std::fprintf(stderr, "%s\n", xml::describe(diagnostic, path).c_str());
  }
  std::fprintf(stderr, "the document written is not well-formed XML\n");
  std::abort();
}

}  // namespace

void load(const std::uint8_t* data, std::size_t size) {
  NullSink out;
  try {
    parse_xml_bytes(text(data, size), kName, out);
  } catch (const std::exception&) {
  }
}

void open(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = text(data, size);
  opened(bytes, false);
  opened(bytes, true);
}

void create(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kSettings = 8;
  if (size < kSettings) return;
  TitleSettings settings;
  settings.tolerant = (data[0] & 1) != 0;
  settings.import_safe = (data[0] & 2) != 0;
  settings.timecode_reader = (data[0] & 4) != 0;
  settings.set_rate(FRAME_RATES[data[2] % FRAME_RATES.size()]);
  for (std::size_t i = 0; i < 5; ++i) {
    const std::size_t choice = data[3 + i] % (CHOICE_TITLES.size() + 1);
    settings.lines[i].label = i % 2 == 0 ? "" : "L&<" + std::to_string(i);
    settings.lines[i].choice = choice < CHOICE_TITLES.size()
                                   ? std::optional<std::string>(CHOICE_TITLES[choice])
                                   : std::nullopt;
  }
  const std::string bytes = text(data + kSettings, size - kSettings);
  OpenedSource source = opened(bytes, settings.tolerant);
  // The shots of the first top-level sequence, where there is one, instead of master clips.
  const bool over_sequence = (data[0] & 8) != 0 && !source.sequences.empty();
  if (over_sequence) source = opened(bytes, settings.tolerant, source.sequences.front().name);
  if (source.status != OpenStatus::Opened) return;
  settings.template_name = source.templates[data[1] % source.templates.size()].name;
  settings.sequence_name = "fuzz";
  NullSink out;
  std::filesystem::remove(output_path());
  try {
    create_titles(source, settings, output_path(), out);
  } catch (const std::exception&) {
    return;
  }
  require_well_formed(output_path());
}

}  // namespace quillory::fuzz
