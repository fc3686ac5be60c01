// Real exports written by other editing programs, each read strictly and with --tolerant: it
// must either be written as a document that parses, or be refused with exit 1 and a message
// that names the file (and, for a clip that lacks something, the clip and its line), writing
// nothing. Recording the outcome of each file (tests/cli/corpus_outcomes) makes any change of
// behaviour show. A file written both ways needed no assumption, so both files are the same.
// Every file written is written import-safe too, and must read back through its ids as written.

#include <gtest/gtest.h>

#include <filesystem>
#include <algorithm>
#include <fstream>
#include <map>
#include <unordered_map>

#include <libxml/xpath.h>

#include "import_view.h"
#include "test_support.h"
#include "xml/read_xml.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

namespace fs = std::filesystem;

using Outcomes = std::map<std::string, std::pair<std::string, std::string>>;

// File name: (strict outcome, tolerant outcome).
Outcomes recorded_outcomes() {
  Outcomes outcomes;
  std::ifstream in(QUILLORY_CORPUS_OUTCOMES);
  for (std::string name, strict, tolerant; in >> name;) {
    if (name.front() == '#') {
      std::getline(in, strict);
    } else if (in >> strict >> tolerant) {
      outcomes[name] = {strict, tolerant};
    }
  }
  return outcomes;
}

// Runs the file with --tcr (and `mode` when given); the written file's text, or "" when none.
std::string check_outcome(const fs::path& source, const std::string& outcome,
                          const std::string& mode) {
  SCOPED_TRACE(mode);
  test::TempDir dir;
  std::vector<std::string> argv{QUILLORY_BINARY, "--output", dir.file("out.xml"), "--tcr"};
  if (!mode.empty()) argv.push_back(mode);
  argv.push_back(source.string());
  const auto result = test::run_command(argv, {"XDG_DATA_HOME=" + dir.path().string()});
  EXPECT_EQ(result.out.rfind("opening...\n", 0), 0U);
  const std::string& err = result.err;
  if (outcome == "written" || outcome == "assumed") {
    EXPECT_EQ(result.exit_code, 0) << err;
    const bool warned = err.find("quillory: warning: clip ") != std::string::npos &&
                        err.find(" needed ") != std::string::npos;
    EXPECT_EQ(warned, outcome == "assumed") << err;
    const std::string written = test::read_file(dir.file("out.xml"));
    EXPECT_EQ(test::texts(test::parse(written), "count(/xmeml/sequence/media/video/track)"), "2|");
    // Import-safe, it reads back through its ids as written.
    argv.insert(argv.end() - 1, "--import-safe");
    EXPECT_EQ(test::run_command(argv, {"XDG_DATA_HOME=" + dir.path().string()}).exit_code, 0);
    const auto view = test::read_as_importers_do(test::read_file(dir.file("out.xml")));
    EXPECT_EQ(view.as_resolved, view.as_written);
    return written;
  }
  const auto path = err.find(source.string());
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(err.rfind("quillory: ", 0), 0U) << err;
  EXPECT_NE(path, std::string::npos) << err;
  if (outcome == "not-xmeml") {
    EXPECT_NE(err.find(" is not an xmeml document", path), std::string::npos) << err;
  } else {  // quillory: clip [N] "NAME" (<clip> at line L of PATH) has ...
    EXPECT_LT(err.find("clip "), err.find(" at line ")) << err;
    EXPECT_LT(err.find(" at line "), path) << err;
    EXPECT_NE(err.find(") has ", path), std::string::npos) << err;
  }
  EXPECT_FALSE(fs::exists(dir.file("out.xml")));
  return "";
}

TEST(Corpus, EveryRealExportOpensAndExportsOrIsRefusedClearly) {
  if (!fs::is_directory(QUILLORY_CORPUS_DIR)) GTEST_SKIP() << "no corpus beside the project";
  const auto outcomes = recorded_outcomes();
  std::size_t seen = 0;
  for (const auto& entry : fs::directory_iterator(QUILLORY_CORPUS_DIR)) {
    if (entry.path().extension() != ".xml") continue;
    ++seen;
    SCOPED_TRACE(entry.path().filename().string());
    const auto recorded = outcomes.find(entry.path().filename().string());
    ASSERT_NE(recorded, outcomes.end()) << "record the outcome of the new file";
    const auto& [strict, tolerant] = recorded->second;
    const std::string strictly = check_outcome(entry.path(), strict, "");
    const std::string tolerantly = check_outcome(entry.path(), tolerant, "--tolerant");
    if (strict == "written") {
      EXPECT_TRUE(strictly == tolerantly);
    }
  }
  EXPECT_EQ(seen, std::count_if(outcomes.begin(), outcomes.end(), [](const auto& outcome) {
              return outcome.first.rfind("fcpxml/", 0) != 0;
            }));
}

// Real FCPXML exports (files and bundles), read strictly and with --tolerant: each is written
// as a document valid against Apple's DTD of its version, or refused with exit 1 and a message
// that names the file and the line of what it lacks.
TEST(Corpus, EveryFcpxmlExportWritesAValidDocumentOrIsRefusedClearly) {
  const fs::path folder = fs::path(QUILLORY_CORPUS_DIR) / "fcpxml";
  if (!fs::is_directory(folder) || !fs::is_directory(QUILLORY_FCPXML_DTD_DIR)) {
    GTEST_SKIP() << "no FCPXML corpus or DTDs beside the project";
  }
  const auto outcomes = recorded_outcomes();
  for (const auto& entry : fs::directory_iterator(folder)) {
    const std::string extension = entry.path().extension().string();
    if (extension != ".fcpxml" && extension != ".fcpxmld") continue;
    const std::string name = "fcpxml/" + entry.path().filename().string();
    SCOPED_TRACE(name);
    const auto recorded = outcomes.find(name);
    ASSERT_NE(recorded, outcomes.end()) << "record the outcome of the new file";
    for (const auto& [mode, outcome] : {std::pair{"", recorded->second.first},
                                        std::pair{"--tolerant", recorded->second.second}}) {
      test::TempDir dir;
      std::vector<std::string> argv{QUILLORY_BINARY, "--output", dir.file("out.fcpxml")};
      if (*mode != 0) argv.push_back(mode);
      argv.push_back(entry.path().string());
      const auto result = test::run_command(argv, {"XDG_DATA_HOME=" + dir.path().string()});
      if (outcome == "written") {
        ASSERT_EQ(result.exit_code, 0) << result.err;
        EXPECT_EQ(test::fcpxml_dtd_problems(test::read_file(dir.file("out.fcpxml")),
                                            QUILLORY_FCPXML_DTD_DIR), "");
      } else {
        EXPECT_EQ(result.exit_code, 1);
        EXPECT_NE(result.err.find(entry.path().string()), std::string::npos) << result.err;
        EXPECT_NE(result.err.find(" at line "), std::string::npos) << result.err;
        EXPECT_FALSE(fs::exists(dir.file("out.fcpxml")));
      }
    }
  }
}

// Every project of every real FCPXML export, titled over its shots (--sequence NAME): a document
// valid against Apple's DTD of its version, with one title per shot the listing counts.
TEST(Corpus, EveryFcpxmlProjectTitledOverItsShotsWritesAValidDocument) {
  const fs::path folder = fs::path(QUILLORY_CORPUS_DIR) / "fcpxml";
  if (!fs::is_directory(folder) || !fs::is_directory(QUILLORY_FCPXML_DTD_DIR)) {
    GTEST_SKIP() << "no FCPXML corpus or DTDs beside the project";
  }
  std::size_t projects = 0;
  for (const auto& entry : fs::directory_iterator(folder)) {
    const bool bundle = entry.path().extension() == ".fcpxmld";
    if (!bundle && entry.path().extension() != ".fcpxml") continue;
    const auto source = test::parse(test::read_file(bundle ? entry.path() / "Info.fcpxml" : entry.path()));
    for (const xmlNode* project : xml::all_descendants(xml::as_node(source.get()), "project")) {
      const std::string name = xml::attribute(project, "name").value_or("");
      SCOPED_TRACE(entry.path().filename().string() + ": " + name);
      ++projects;
      test::TempDir dir;
      const auto result = test::run_command({QUILLORY_BINARY, "--sequence", name, "--output",
                                             dir.file("out.fcpxml"), entry.path().string()},
                                            {"XDG_DATA_HOME=" + dir.path().string()});
      ASSERT_EQ(result.exit_code, 0) << result.err;
      const std::string written = test::read_file(dir.file("out.fcpxml"));
      EXPECT_EQ(test::fcpxml_dtd_problems(written, QUILLORY_FCPXML_DTD_DIR), "");
      std::size_t shots = 0;
      for (std::size_t at = 0; (at = result.out.find("\nClip ", at)) != std::string::npos; ++at) ++shots;
      const auto output = test::parse(written);
      EXPECT_EQ(test::texts(output, "count(//title[@name='Quillory Card'])"), std::to_string(shots) + "|");
    }
  }
  EXPECT_EQ(projects, 33U);
}

// The picture seen at each frame of a sequence, read the slow way, frame by frame: the enabled
// clip item of the highest enabled video track that covers the frame, generated media
// (a file with a <mediaSource>) aside. An item's bound of -1 lies at the cut point of the
// transition beside it.
class FrameByFrame {
 public:
  FrameByFrame(const xmlNode* sequence, const xml::Document& doc) {
    for (const xmlNode* file : matches(doc, "//file[@id][*]")) {
      files_.emplace(*xml::attribute(file, "id"), file);
    }
    for (const xmlNode* track : xml::elements_at(sequence, {"media", "video", "track"})) {
      auto& items = tracks_.emplace_back();
      if (text(track, "enabled") == "FALSE") continue;
      for (const xmlNode* item = track->children; item != nullptr; item = item->next) {
        if (!is(item, "clipitem") || text(item, "enabled") == "FALSE" || generated(item)) continue;
        const long long start = bound(item, "start", false), end = bound(item, "end", true);
        items.push_back({start, end, item});
        last_ = std::max(last_, end);
      }
    }
  }

  // The runs of frames over which one item is seen, "start-end" each.
  std::string runs() const {
    std::string text;
    const xmlNode* seen = nullptr;
    long long since = 0;
    for (long long frame = 0; frame <= last_; ++frame) {
      const xmlNode* now = at(frame);
      if (now == seen) continue;
      if (seen != nullptr) text += std::to_string(since) + "-" + std::to_string(frame) + "|";
      seen = now;
      since = frame;
    }
    return text;
  }

 private:
  struct Span {
    long long start, end;
    const xmlNode* item;
  };
  static bool is(const xmlNode* node, const char* name) {
    return node->type == XML_ELEMENT_NODE && xmlStrEqual(node->name, BAD_CAST name);
  }
  static std::string text(const xmlNode* node, const char* child) {
    return std::string(xml::trim_blanks(xml::text_content(xml::first_child_element(node, child))));
  }
  static std::vector<const xmlNode*> matches(const xml::Document& doc, const char* path) {
    xml::XPathContext context(xmlXPathNewContext(doc.get()));
    xml::XPathObject found(xmlXPathEvalExpression(BAD_CAST path, context.get()));
    std::vector<const xmlNode*> nodes;
    for (int i = 0; found && found->nodesetval != nullptr && i < found->nodesetval->nodeNr; ++i) {
      nodes.push_back(found->nodesetval->nodeTab[i]);
    }
    return nodes;
  }
  bool generated(const xmlNode* item) const {
    const xmlNode* file = xml::first_child_element(item, "file");
    if (file != nullptr && file->children == nullptr) {
      const auto found = files_.find(xml::attribute(file, "id").value_or(""));
      file = found == files_.end() ? nullptr : found->second;
    }
    return file != nullptr && xml::first_descendant(file, "mediaSource") != nullptr;
  }
  static long long bound(const xmlNode* item, const char* which, bool after) {
    const long long value = xml::leading_integer(text(item, which));
    if (value != -1) return value;
    const xmlNode* next = after ? item->next : item->prev;
    while (next != nullptr && next->type != XML_ELEMENT_NODE) next = after ? next->next : next->prev;
    if (next == nullptr || !is(next, "transitionitem")) return -1;
    const long long start = xml::leading_integer(text(next, "start"));
    const long long end = xml::leading_integer(text(next, "end"));
    const std::string alignment = text(next, "alignment");
    if (alignment.rfind("start", 0) == 0) return start;
    if (alignment.rfind("end", 0) == 0) return end;
    return (start + end) / 2;
  }
  const xmlNode* at(long long frame) const {
    for (auto track = tracks_.rbegin(); track != tracks_.rend(); ++track) {
      for (const auto& span : *track) {
        if (span.start <= frame && frame < span.end) return span.item;
      }
    }
    return nullptr;
  }

  std::unordered_map<std::string, const xmlNode*> files_;
  std::vector<std::vector<Span>> tracks_;
  long long last_ = 0;
};

// Each track's items, as "name start end in out" in order.
std::string items_of(const xml::Document& doc, const std::string& tracks, std::size_t track) {
  const std::string path = tracks + "[" + std::to_string(track) + "]/*[self::clipitem or "
                           "self::transitionitem or self::generatoritem]/*[self::name or "
                           "self::start or self::end or self::in or self::out]";
  return test::texts(doc, path.c_str());
}

// Every sequence export: its first top-level sequence titled shot by shot. The copy holds the
// source's tracks item for item, and one more video track whose titles lie over the runs of
// frames that a frame-by-frame reading sees, one title per run.
TEST(Corpus, EverySequenceIsCopiedWithOneTitlePerShot) {
  if (!fs::is_directory(QUILLORY_CORPUS_DIR)) GTEST_SKIP() << "no corpus beside the project";
  const char* first = "(//sequence[not(ancestor::clipitem)])[1]";
  for (const auto& entry : fs::directory_iterator(QUILLORY_CORPUS_DIR)) {
    const xml::Document source =
        xml::read_xml(test::read_file(entry.path()), "source", XML_PARSE_RECOVER).document;
    if (!source || test::texts(source, "count(//sequence[not(ancestor::clipitem)])") == "0|") continue;
    SCOPED_TRACE(entry.path().filename().string());
    std::string name = test::texts(source, (std::string(first) + "/name").c_str());
    name = name.empty() ? "Sequence 1" : name.substr(0, name.size() - 1);
    test::TempDir dir;
    const auto result = test::run_command(
        {QUILLORY_BINARY, "--quiet", "--tolerant", "--tcr", "--sequence", name, "--output",
         dir.file("out.xml"), entry.path().string()},
        {"XDG_DATA_HOME=" + dir.path().string()});
    ASSERT_EQ(result.exit_code, 0) << result.err;
    const xml::Document out = test::parse(test::read_file(dir.file("out.xml")));
    const std::string from = first, to = "/xmeml/sequence";
    const std::size_t videos = std::stoul(test::texts(source, ("count(" + from + "/media/video/track)").c_str()));
    const std::size_t audios = std::stoul(test::texts(source, ("count(" + from + "/media/audio/track)").c_str()));
    EXPECT_EQ(test::texts(out, "count(/xmeml/sequence/media/video/track)"), std::to_string(videos + 1) + "|");
    for (std::size_t track = 1; track <= videos; ++track) {
      EXPECT_EQ(items_of(out, to + "/media/video/track", track), items_of(source, from + "/media/video/track", track));
    }
    for (std::size_t track = 1; track <= audios; ++track) {
      EXPECT_EQ(items_of(out, to + "/media/audio/track", track), items_of(source, from + "/media/audio/track", track));
    }
    std::string titles;
    xml::XPathContext context(xmlXPathNewContext(out.get()));
    xml::XPathObject found(xmlXPathEvalExpression(BAD_CAST "/xmeml/sequence/media/video/track[last()]/generatoritem", context.get()));
    for (int i = 0; found->nodesetval != nullptr && i < found->nodesetval->nodeNr; ++i) {
      const xmlNode* title = found->nodesetval->nodeTab[i];
      titles += xml::text_content(xml::first_child_element(title, "start")) + "-" +
                xml::text_content(xml::first_child_element(title, "end")) + "|";
    }
    xml::XPathContext in_source(xmlXPathNewContext(source.get()));
    xml::XPathObject sequence(xmlXPathEvalExpression(BAD_CAST first, in_source.get()));
    EXPECT_EQ(titles, FrameByFrame(sequence->nodesetval->nodeTab[0], source).runs());
  }
}

}  // namespace
}  // namespace quillory
