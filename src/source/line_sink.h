#pragma once
// Where the system's own output lines go. The host hands one to the core: the command line
// writes them to standard output, the window also shows them in its log pane.

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace quillory {

class LineSink {
 public:
  virtual ~LineSink() = default;
  // One line of output, without its line end.
  virtual void line(std::string_view text) = 0;
  // How far a long operation has got: `done` of `total` clips through `stage` ("placing",
  // then "writing"). Only hosts that show progress take note.
  virtual void progress(std::string_view stage, std::size_t done, std::size_t total) {
    (void)stage, (void)done, (void)total;
  }
};

// Writes each line to a stream, followed by a line feed, and flushes so that lines appear as
// the work goes even when the stream is a pipe.
class StreamSink : public LineSink {
 public:
  explicit StreamSink(std::ostream& stream) : stream_(stream) {}
  void line(std::string_view text) override { stream_ << text << '\n' << std::flush; }

 private:
  std::ostream& stream_;
};

// Drops every line (a host asked to be quiet).
class NullSink : public LineSink {
 public:
  void line(std::string_view) override {}
};

// Keeps the lines in memory (tests, and hosts that show them later).
class RecordingSink : public LineSink {
 public:
  void line(std::string_view text) override { lines.emplace_back(text); }
  std::vector<std::string> lines;
};

}  // namespace quillory
