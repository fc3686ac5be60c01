// Every class of bad input and every fault while writing, one row each, through the real
// binary. Each row checks the exit status, one message on standard error that names the file
// (and, where there is one, the element and its line), nothing but progress lines on standard
// output, the previous output byte for byte, and no temporary file left beside it.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <future>
#include <thread>

#include "test_support.h"
#include "xml/read_xml.h"

namespace quillory {
namespace {

namespace fs = std::filesystem;

const std::string kPrevious = "<?xml version=\"1.0\"?>\n<xmeml>the previous titles</xmeml>\n";

// A valid source of one clip (its file's metadata `metadata`, its audio `audio`, `after` it
// another clip), with every `from` replaced by `to`; all of it on line 4.
std::string clip(const std::string& from = "", const std::string& to = "",
                 const std::string& metadata = "", const std::string& audio = "",
                 const std::string& after = "") {
  std::string body = test::file_definition("f", "a.mov", "", "", metadata) +
                     test::media_clip("A", "f", 25, "", "FALSE", 25, audio) + after;
  for (auto at = body.find(from); !from.empty() && at != std::string::npos;
       at = body.find(from, at + to.size())) {
    body.replace(at, from.size(), to);
  }
  return test::xmeml(body);
}

std::string slate(const std::string& timing, const std::string& parameter) {
  return "<clip id=\"s\"><name>Slate</name><media><video><track><generatoritem><name>S</name>"
         "<duration>9</duration>" + timing + "<start>0</start><end>9</end><effect><effectid>Text"
         "</effectid>" + parameter + "</effect></generatoritem></track></video></media></clip>";
}

std::string nested(int depth) {
  std::string open, close;
  for (int i = 0; i < depth; ++i) open += "<a>", close += "</a>";
  return test::xmeml(open + close);
}

struct Row {
  const char* name;
  std::string source;           // the source's text; see `kind` for the rows that have none
  std::vector<std::string> said;  // what standard error must say, besides the path
  std::vector<std::string> args = {};
  enum Kind {
    Text, Folder, Missing, Unreadable, OutputMissing, OutputFolder, OutputReadOnly, FullDisk, Stopped,
    // The source given as the output, spelt as a path to it, through "..", a hard link and a
    // symbolic link.
    SourceAsOutput, SourceThroughParent, SourceHardLink, SourceSymbolicLink
  } kind = Text;
  int exit = 1;
};

TEST(FailureMatrix, EveryFaultEndsWithOneLocatedMessageAndThePreviousOutput) {
  const std::string item = "<track><clipitem><start>0</start><end>0</end></clipitem></track>";
  std::string many;
  for (int i = 0; i < 20000; ++i) many += test::media_clip("C" + std::to_string(i), "f", 25);
  const std::vector<std::string> slate_template{"--template", "Slate"};
  const std::vector<Row> rows{
      {"clip without name", clip("<name>A</name>"), {"a clip has no <name> (<clip> at line 4"}},
      {"file without name", clip("<name>a.mov</name>"), {"definition has no <name> (<file> at line 4"}},
      {"metadata without key", clip("", "", "<metadata><value>v</value></metadata>"), {"no <key> (<metadata> at line 4"}},
      {"unreadable date", clip("", "", test::metadata("a.creationdate", "soon")), {"\"soon\", which is not a date"}},
      {"no file", clip("<file id=\"f\"/>"), {"clip \"A\" (<clip> at line 4", "has no <file> element"}},
      {"unmatched file id", clip("id=\"f\"/>", "id=\"g\"/>"), {"uses the file id \"g\" (<file> at line 4"}},
      {"no ntsc", clip("<ntsc>FALSE</ntsc>"), {"has no <ntsc> element"}},
      {"rate outside the table", clip("<timebase>25", "<timebase>23"), {"no frame rate matches", "(<ntsc> at line 4"}},
      {"no duration", clip("<duration>25</duration>"), {"clip 1 \"A\" (<clip> at line 4", "has no <duration>"}},
      {"no video clip item", clip("clipitem", "stillitem"), {"has no video clip item"}},
      {"fifth audio item", clip("", "", "", item + item + item + item + item), {"has 5 audio clip items", "<clipitem> at line 4"}},
      {"clip item without start", clip("<start>-1</start>"), {"its video clip item <clipitem> at line 4", "has no <start>"}},
      {"template without out", clip("", "", "", "", slate("", "<parameter><value/></parameter>")), {"\"Slate\"", "has no <out>"}, slate_template},
      {"template without value", clip("", "", "", "", slate("<out>9</out>", "")), {"has 0 effect/parameter/value"}, slate_template},
      {"empty source", "", {"cannot read"}},
      {"binary source", std::string("\x00\xff\xfe\x01<\x80", 6), {"cannot read"}},
      {"a folder as source", "", {"cannot read", "Is a directory"}, {}, Row::Folder},
      {"missing source", "", {"cannot open", "No such file"}, {}, Row::Missing},
      {"unreadable source", clip(), {"cannot open", "Permission denied"}, {}, Row::Unreadable},
      {"not xmeml", "<project><clip/></project>", {"is not an xmeml document"}},
      {"truncated in an element", clip().substr(0, clip().find("</duration>") - 2), {"clip \"A\" (<clip> at line"}},
      {"nested past the limit", nested(266), {"Excessive depth", "nested more than 256 deep"}},
      {"text node of 100 MB", test::xmeml("<clip><name>" + std::string(100 << 20, 'x') + "</name></clip>"), {"huge text node"}},
      {"output folder missing", clip(), {"cannot create a temporary file beside"}, {}, Row::OutputMissing},
      {"output path is a folder", clip(), {"is a folder", "nothing was written"}, {}, Row::OutputFolder},
      {"read-only output folder", clip(), {"cannot create a temporary file beside"}, {}, Row::OutputReadOnly},
      {"full disk", clip(), {"cannot write", "No space left on device"}, {}, Row::FullDisk},
      {"stopped while writing", test::xmeml(test::file_definition("f", "a.mov") + many), {}, {}, Row::Stopped, 128 + SIGTERM},
      {"source as output", clip(), {"is the source"}, {}, Row::SourceAsOutput},
      {"source as output through ..", clip(), {"is the source"}, {}, Row::SourceThroughParent},
      {"hard link to the source as output", clip(), {"is the source"}, {}, Row::SourceHardLink},
      {"symbolic link to the source as output", clip(), {"is the source"}, {}, Row::SourceSymbolicLink},
      {"mistyped line choice", clip(), {"--line1", "did you mean \"Clip Name\"?", "\"Log Note\""}, {"--line1", "Clip name"}, Row::Text, 2},
      {"mistyped template", clip(), {"did you mean \"Default\"?"}, {"--template", "default"}, Row::Text, 2},
      {"mistyped rate", clip(), {"did you mean \"PAL (25fps)\"?"}, {"--rate", "PAL (25 fps)"}, Row::Text, 2},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const bool by_permission = row.kind == Row::Unreadable || row.kind == Row::OutputReadOnly;
    if (by_permission && ::geteuid() == 0) {
      std::cout << "[ SKIPPED  ] " << row.name << ": permissions do not stop root\n";
      continue;
    }
    const test::TempDir dir;
    std::string source = dir.file("source.xml");
    std::string output = dir.file("titles.xml");
    if (row.kind == Row::Folder) fs::create_directory(source);
    if (row.kind == Row::Text || row.kind >= Row::Unreadable) test::write_file(source, row.source);
    if (row.kind == Row::Unreadable) fs::permissions(source, fs::perms::none);
    if (row.kind == Row::OutputMissing) output = dir.file("gone/titles.xml");
    if (row.kind == Row::OutputFolder) fs::create_directory(output);
    if (row.kind == Row::OutputReadOnly) {
      fs::create_directory(dir.file("kept"));
      output = dir.file("kept/titles.xml");
    }
    if (row.kind == Row::FullDisk) {
      fs::create_directory(dir.file("small"));
      if (::mount("tmpfs", dir.file("small").c_str(), "tmpfs", 0, "size=4k") != 0) {
        std::cout << "[ SKIPPED  ] full disk: cannot mount a small file system here\n";
        continue;
      }
      output = dir.file("small/titles.xml");
    }
    const bool source_as_output = row.kind >= Row::SourceAsOutput;
    if (row.kind == Row::SourceAsOutput) output = source;
    if (row.kind == Row::SourceThroughParent) {
      fs::create_directory(dir.file("sub"));
      output = dir.file("sub/../source.xml");
    }
    if (row.kind == Row::SourceHardLink) fs::create_hard_link(source, output);
    if (row.kind == Row::SourceSymbolicLink) fs::create_symlink(source, output);
    if (row.kind != Row::OutputFolder && row.kind != Row::OutputMissing && !source_as_output) {
      test::write_file(output, kPrevious);
    }
    const auto stop_once_writing = [&](int pid) {
      if (row.kind != Row::Stopped) return;
      const auto give_up = std::chrono::steady_clock::now() + std::chrono::seconds(60);
      const auto writing = [&] {
        for (const auto& entry : fs::directory_iterator(dir.path())) {
          if (entry.path().filename().string().rfind("titles.xml.", 0) == 0) return true;
        }
        return false;
      };
      while (!writing() && std::chrono::steady_clock::now() < give_up) {
        std::this_thread::sleep_for(std::chrono::microseconds(200));
      }
      ::kill(pid, SIGTERM);
    };
    std::vector<std::string> argv{QUILLORY_BINARY, "--output", output};
    argv.insert(argv.end(), row.args.begin(), row.args.end());
    argv.push_back(source);
    if (row.kind == Row::OutputReadOnly) {
      fs::permissions(dir.file("kept"), fs::perms::owner_read | fs::perms::owner_exec);
    }
    const auto result =
        test::run_command(argv, {"XDG_DATA_HOME=" + dir.path().string()}, stop_once_writing);
    if (row.kind == Row::OutputReadOnly) fs::permissions(dir.file("kept"), fs::perms::owner_all);
    EXPECT_EQ(result.exit_code, row.exit) << result.err;
    if (row.kind != Row::Stopped) {
      EXPECT_EQ(result.err.rfind("quillory: ", 0), 0U) << result.err;
      EXPECT_LT(result.err.size(), 2000U) << "one message, not a flood";
      const std::string& named = row.kind >= Row::OutputMissing && !source_as_output ? output : source;
      // A usage error is about the command line, not a file.
      if (row.exit != 2) {
        EXPECT_NE(result.err.find(named), std::string::npos) << result.err;
      }
      for (const auto& said : row.said) EXPECT_NE(result.err.find(said), std::string::npos) << result.err;
    }
    EXPECT_EQ(result.out.find("quillory"), std::string::npos) << "messages go to standard error";
    if (fs::is_regular_file(output)) {
      EXPECT_EQ(test::read_file(output), source_as_output ? row.source : kPrevious);
    }
    const fs::path folder = fs::path(output).parent_path();
    for (const auto& entry : fs::directory_iterator(fs::exists(folder) ? folder : dir.path())) {
      EXPECT_NE(entry.path().filename().string().rfind("titles.xml.", 0), 0U) << entry.path();
    }
    if (row.kind == Row::FullDisk) ::umount(dir.file("small").c_str());
  }
}

// Runs that succeed where a careless one would lose or misplace a file: each writes what the
// same run to a plain new file writes, and leaves the user's files as they were.
TEST(FailureMatrix, EdgesWriteWhereTheUserMeantAndKeepTheirFiles) {
  const test::TempDir dir;
  const std::string source = dir.file("source.xml");
  test::write_file(source, clip());
  const std::string latin1 = dir.file("latin1.xml");
  test::write_file(latin1, clip("<lognote>N", "<lognote>caf\xE9"));
  const auto quillory = [&](const std::vector<std::string>& args, const std::string& home,
                            const std::string& from = "") {
    std::vector<std::string> argv{QUILLORY_BINARY, "--quiet"};
    argv.insert(argv.end(), args.begin(), args.end());
    if (!from.empty()) {
      std::string line = "cat '" + from + "' |";
      for (const auto& word : argv) line += " '" + word + "'";
      argv = {"/bin/sh", "-c", line + " /dev/stdin"};
    } else {
      argv.push_back(source);
    }
    return test::run_command(argv, {"HOME=" + home, "XDG_DATA_HOME="});
  };
  fs::create_directory(dir.file("home"));
  const auto plain = quillory({"--output", dir.file("plain.xml")}, dir.file("home"));
  ASSERT_EQ(plain.exit_code, 0) << plain.err;
  const std::string expected = test::read_file(dir.file("plain.xml"));

  // A new account without a data folder: made for the owner alone, and every mode works.
  const std::string fresh = dir.file("fresh");
  fs::create_directory(fresh);
  for (const auto& args : {std::vector<std::string>{"--list"}, {"--preview"}, {}}) {
    EXPECT_EQ(quillory(args, fresh).exit_code, 0) << args.size();
  }
  EXPECT_EQ(fs::status(fresh + "/.local/share").permissions(), fs::perms::owner_all);
  EXPECT_EQ(test::read_file(fresh + "/.local/share/Ferncroft/Quillory.xml"), expected);

  // Through a symbolic link the target is replaced, the link stays, the mode is kept.
  test::write_file(dir.file("target.xml"), kPrevious);
  fs::permissions(dir.file("target.xml"), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
  fs::create_symlink("target.xml", dir.file("link.xml"));
  EXPECT_EQ(quillory({"--output", dir.file("link.xml")}, dir.file("home")).exit_code, 0);
  EXPECT_TRUE(fs::is_symlink(dir.file("link.xml")));
  EXPECT_EQ(test::read_file(dir.file("target.xml")), expected);
  EXPECT_EQ(fs::status(dir.file("target.xml")).permissions(),
            fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

  // "--output -": the document alone on standard output, nothing on disk.
  const auto piped_out = quillory({"--output", "-"}, dir.file("home"));
  EXPECT_EQ(piped_out.exit_code, 0);
  EXPECT_EQ(piped_out.out, expected);
  EXPECT_FALSE(fs::exists(dir.file("-")));
  EXPECT_NE(piped_out.err.find("standard output"), std::string::npos);

  // A source from a pipe that needs repair is repaired from the bytes read once.
  const auto repaired =
      quillory({"--line1", "Log Note", "--output", dir.file("repaired.xml")}, dir.file("home"), latin1);
  EXPECT_EQ(repaired.exit_code, 0) << repaired.err;
  EXPECT_NE(test::read_file(dir.file("repaired.xml")).find("caf"), std::string::npos);
  EXPECT_EQ(test::read_file(source), clip());
}

// Outputs that are not regular files: a device, a pipe or a socket is written into, a folder or
// a block device refused before the source is read; each stays what it was.
TEST(FailureMatrix, OutputsThatAreNotFilesAreWrittenIntoOrRefusedAndStayWhatTheyWere) {
  const test::TempDir dir;
  const std::string source = dir.file("source.xml");
  test::write_file(source, clip());
  const std::vector<std::string> env{"XDG_DATA_HOME=" + dir.path().string()};
  ASSERT_EQ(test::run_command({QUILLORY_BINARY, "--quiet", "--output", dir.file("plain.xml"), source}, env)
                .exit_code, 0);
  const std::string expected = test::read_file(dir.file("plain.xml"));
  enum Kind { Device, Pipe, Socket, StandardOutput, Substitution, Folder, BlockDevice };
  const std::pair<const char*, Kind> rows[] = {
      {"character device", Device}, {"named pipe with a reader", Pipe}, {"listening socket", Socket},
      {"/dev/stdout into a pipe", StandardOutput}, {"a shell's >(...)", Substitution},
      {"folder", Folder}, {"block device", BlockDevice}};
  for (const auto& [name, kind] : rows) {
    SCOPED_TRACE(name);
    const std::string output = dir.file(std::string("out") + std::to_string(kind));
    int listening = -1;
    if (kind == Socket) {
      sockaddr_un address{AF_UNIX, {}};
      std::strcpy(address.sun_path, output.c_str());
      listening = ::socket(AF_UNIX, SOCK_STREAM, 0);
      ASSERT_EQ(::bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
      ASSERT_EQ(::listen(listening, 1), 0);
    }
    if (kind == Pipe) {
      ASSERT_EQ(::mkfifo(output.c_str(), 0600), 0);
    }
    if (kind == Folder) fs::create_directory(output);
    const bool device = kind == Device || kind == BlockDevice;
    if (device && ::mknod(output.c_str(), kind == Device ? S_IFCHR | 0666 : S_IFBLK | 0600,
                          kind == Device ? makedev(1, 3) : makedev(7, 0)) != 0) {
      std::cout << "[ SKIPPED  ] " << name << ": cannot make a device here\n";
      continue;
    }
    const auto type = fs::symlink_status(output).type();
    // The reader of a pipe or socket; once the run is over, an empty write of our own ends it
    // should the run never have opened it.
    auto reader = std::async(std::launch::async, [&, kind = kind] {
      if (kind == Pipe) return test::read_file(output);
      if (kind != Socket) return std::string();
      std::string got;
      const int connection = ::accept(listening, nullptr, nullptr);
      char block[4096];
      for (ssize_t n; (n = ::read(connection, block, sizeof block)) > 0;) got.append(block, n);
      ::close(connection);
      return got;
    });
    // The refused rows name a source that does not exist: the output is refused before it.
    const std::string from = kind >= Folder ? dir.file("missing.xml") : source;
    std::vector<std::string> argv{QUILLORY_BINARY, "--output", output, from};
    if (kind == StandardOutput) argv = {"/bin/sh", "-c", "\"$0\" --output /dev/stdout \"$1\" | cat", QUILLORY_BINARY, from};
    if (kind == Substitution) {
      argv = {"/bin/bash", "-c", "\"$0\" --quiet --output >(cat) \"$1\"; s=$?; wait $!; exit $s", QUILLORY_BINARY, from};
    }
    const auto result = test::run_command(argv, env);
    if (kind == Pipe) ::close(::open(output.c_str(), O_WRONLY | O_NONBLOCK));
    if (kind == Socket) {
      const int ender = ::socket(AF_UNIX, SOCK_STREAM, 0);
      sockaddr_un address{AF_UNIX, {}};
      std::strcpy(address.sun_path, output.c_str());
      ::connect(ender, reinterpret_cast<sockaddr*>(&address), sizeof address);
      ::close(ender);
    }
    const std::string got = reader.get();
    if (listening >= 0) ::close(listening);
    EXPECT_EQ(fs::symlink_status(output).type(), type);
    if (kind >= Folder) {
      EXPECT_EQ(result.exit_code, 1);
      EXPECT_EQ(result.err.rfind("quillory: the output " + output + " is a ", 0), 0U) << result.err;
      EXPECT_EQ(result.out, "");
      continue;
    }
    EXPECT_EQ(result.exit_code, 0) << result.err;
    if (kind != Device) {
      EXPECT_EQ(kind == Pipe || kind == Socket ? got : result.out, expected);
    }
    for (const auto& entry : fs::directory_iterator(dir.path())) {
      EXPECT_EQ(entry.path().filename().string().find(".xml."), std::string::npos) << entry.path();
      EXPECT_EQ(entry.path().filename().string().find("out" + std::to_string(kind) + "."), std::string::npos);
    }
  }
}

// Text given on the command line goes into the document as it stands: written so that an XML
// reader takes it back exactly, or refused as a usage error with nothing written.
TEST(FailureMatrix, OptionTextIsWrittenAsXmlOrRefused) {
  const test::TempDir dir;
  test::write_file(dir.file("source.xml"), clip());
  const std::pair<std::string, bool> rows[] = {
      {"plain", true}, {"quotes \" ' & ampersands &amp;", true}, {"]]> <![CDATA[", true},
      {"caf\xE9", false}, {"a\x01", false}, {"tab\tand\rreturn", true}, {"\xEF\xBF\xBE", false}};
  for (const auto& [text, taken] : rows) {
    SCOPED_TRACE(text);
    fs::remove(dir.file("out.xml"));
    const auto result = test::run_command(
        {QUILLORY_BINARY, "--quiet", "--label1", text, "--line1", "Text", "--name", text, "--output",
         dir.file("out.xml"), dir.file("source.xml")},
        {"XDG_DATA_HOME=" + dir.path().string()});
    EXPECT_EQ(result.exit_code, taken ? 0 : 2) << result.err;
    if (!taken) {
      EXPECT_EQ(result.err.rfind("quillory: --name: the text ", 0), 0U) << result.err;
      EXPECT_FALSE(fs::exists(dir.file("out.xml")));
      continue;
    }
    const auto parsed = xml::read_xml(test::read_file(dir.file("out.xml")), "out.xml", 0);
    EXPECT_TRUE(parsed.diagnostics.empty()) << parsed.diagnostics.front().message;
    EXPECT_EQ(test::texts(parsed.document, "/xmeml/sequence/name"), text + "|");
  }
}

}  // namespace
}  // namespace quillory
