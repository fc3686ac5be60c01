#include "test_support.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include <libxml/valid.h>

#include "xml/read_xml.h"
#include "xml/xml_nodes.h"

extern char** environ;

namespace quillory::test {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "quillory-test-XXXXXX").string();
  path_ = ::mkdtemp(pattern.data());
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

EnvGuard::EnvGuard(const char* name, const char* value) : name_(name) {
  if (const char* old = std::getenv(name)) old_value_ = old;
  set(value);
}

EnvGuard::~EnvGuard() { set(old_value_ ? old_value_->c_str() : nullptr); }

void EnvGuard::set(const char* value) const {
  if (value != nullptr) {
    ::setenv(name_.c_str(), value, 1);
  } else {
    ::unsetenv(name_.c_str());
  }
}

void write_file(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  ASSERT_TRUE(file.good()) << "cannot write " << path.string();
}

std::string read_file(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

xml::Document parse(const std::string& text) {
  xml::ParsedXml parsed = xml::read_xml(text, "test document", 0);
  EXPECT_TRUE(parsed.diagnostics.empty())
      << (parsed.diagnostics.empty() ? "" : xml::describe(parsed.diagnostics[0], "test document"));
  return std::move(parsed.document);
}

std::string texts(const xml::Document& doc, const char* path) {
  xml::XPathContext context(xmlXPathNewContext(doc.get()));
  xml::XPathObject result(xmlXPathEvalExpression(BAD_CAST path, context.get()));
  EXPECT_TRUE(result) << "bad XPath " << path;
  if (!result) return {};
  if (result->type == XPATH_NUMBER) return std::to_string(std::lround(result->floatval)) + "|";
  std::string joined;
  const xmlNodeSet* nodes = result->nodesetval;
  for (int i = 0; nodes != nullptr && i < nodes->nodeNr; ++i) {
    joined += xml::text_content(nodes->nodeTab[i]) + "|";
  }
  return joined;
}

CommandResult run_command(const std::vector<std::string>& argv,
                          const std::vector<std::string>& environment,
                          const std::function<void(int pid)>& while_running) {
  // env(1) puts the assignments over the inherited environment.
  std::vector<std::string> words{"/usr/bin/env"};
  words.insert(words.end(), environment.begin(), environment.end());
  words.insert(words.end(), argv.begin(), argv.end());
  std::vector<char*> args;
  for (auto& word : words) args.push_back(word.data());
  args.push_back(nullptr);
  const TempDir captured;
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, captured.file("out").c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, captured.file("err").c_str(), O_WRONLY | O_CREAT, 0600);
  pid_t pid = 0;
  int status = 0;
  const bool started = posix_spawn(&pid, args[0], &actions, nullptr, args.data(), environ) == 0;
  posix_spawn_file_actions_destroy(&actions);
  if (started && while_running) while_running(pid);
  if (!started || ::waitpid(pid, &status, 0) != pid) return {};
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
          read_file(captured.file("out")), read_file(captured.file("err"))};
}

std::string metadata(const std::string& key, const std::string& value) {
  return "<metadata><storage>QuickTime</storage><key>" + key + "</key><value>" + value +
         "</value></metadata>";
}

std::string file_definition(const std::string& id, const std::string& name,
                            const std::string& reel, const std::string& timecode,
                            const std::string& metadata_entries) {
  std::string tc;
  if (!reel.empty() || !timecode.empty()) {
    tc = "<timecode><rate><ntsc>FALSE</ntsc><timebase>25</timebase></rate>";
    if (!timecode.empty()) tc += "<string>" + timecode + "</string>";
    if (!reel.empty()) tc += "<reel><name>" + reel + "</name></reel>";
    tc += "</timecode>";
  }
  return "<file id=\"" + id + "\"><name>" + name + "</name><pathurl>file://localhost/media/" +
         name + "</pathurl>" + tc + metadata_entries + "</file>";
}

std::string media_clip(const std::string& name, const std::string& file_id, int duration,
                       const std::string& file_def, const std::string& ntsc, int timebase,
                       const std::string& audio) {
  const std::string file = file_def.empty() ? "<file id=\"" + file_id + "\"/>" : file_def;
  const std::string d = std::to_string(duration);
  return "<clip id=\"" + name + "\"><name>" + name + "</name><duration>" + d +
         "</duration><rate><ntsc>" + ntsc + "</ntsc><timebase>" + std::to_string(timebase) +
         "</timebase></rate><logginginfo><scene>S-" + name + "</scene><shottake>T-" + name +
         "</shottake><lognote>N-" + name +
         "</lognote></logginginfo><media><video><track><clipitem id=\"" + name +
         "-v\"><name>" + name + "</name><duration>" + d + "</duration><start>-1</start><end>-1</end>" +
         file +
         "<link><linkclipref>" + name + "-v</linkclipref><mediatype>video</mediatype><trackindex>1"
         "</trackindex><clipindex>1</clipindex><groupindex>1</groupindex></link></clipitem>"
         "</track></video><audio>" + audio + "</audio></media></clip>";
}

std::string xmeml(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE xmeml>\n<xmeml version=\"4\">\n" +
         body + "\n</xmeml>\n";
}

namespace {

void collect_problem(void* problems, const char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  *static_cast<std::string*>(problems) += text;
}

struct DtdDeleter {
  void operator()(xmlDtd* dtd) const { xmlFreeDtd(dtd); }
};

}  // namespace

std::string fcpxml_dtd_problems(const std::string& text, const std::filesystem::path& dtd_folder) {
  const xml::Document doc = parse(text);
  if (!doc) return "not XML";
  std::string version = xml::attribute(xmlDocGetRootElement(doc.get()), "version").value_or("");
  std::replace(version.begin(), version.end(), '.', '_');
  const std::string dtd_path = (dtd_folder / ("FCPXMLv" + version + ".dtd")).string();
  const std::unique_ptr<xmlDtd, DtdDeleter> dtd(xmlParseDTD(nullptr, BAD_CAST dtd_path.c_str()));
  if (!dtd) return "no DTD " + dtd_path;
  std::string problems;
  const std::unique_ptr<xmlValidCtxt, decltype(&xmlFreeValidCtxt)> context(xmlNewValidCtxt(),
                                                                          xmlFreeValidCtxt);
  context->userData = &problems;
  context->error = collect_problem;
  context->warning = collect_problem;
  if (xmlValidateDtd(context.get(), doc.get(), dtd.get()) != 1 && problems.empty()) problems = "invalid";
  return problems;
}

}  // namespace quillory::test
