#pragma once
// What a batch shows while its sources are worked on in threads: each source's own lines
// whole, in the order the sources were given, as soon as it and every source before it are
// done; on a terminal, one progress line counting sources and clips; a summary line last.

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "exit_code.h"
#include "source_run.h"
#include "terminal_progress.h"

namespace quillory::cli {

// What one source's run printed to its buffers, and how it ended.
struct FinishedSource {
  std::string out;
  std::string err;
  SourceOutcome outcome;
};

class BatchConsole {
 public:
  // `sources` as given; `done_as` what each source's run did ("written", "listed"); with
  // `json_array` each source's standard output is a JSON document, and all of them one array;
  // the progress line is drawn when `shown` (standard error is a terminal).
  BatchConsole(std::vector<std::string> sources, std::string done_as, bool json_array, bool shown);

  // Both may be called from any source's thread.
  // Source `index` has written `done` of its `total` clips.
  void progress(std::size_t index, std::size_t done, std::size_t total);
  void finished(std::size_t index, FinishedSource result);

  // Once every source has finished: closes the array, prints the summary and says how the
  // batch ended.
  ExitCode close();

 private:
  void print_ready();
  void print(std::size_t index, const FinishedSource& result);
  void draw();

  const std::vector<std::string> sources_;
  const std::string done_as_;
  const bool json_array_;
  const bool shown_;

  std::mutex mutex_;
  std::vector<std::optional<FinishedSource>> waiting_;
  std::size_t printed_ = 0;
  std::size_t finished_ = 0;
  std::vector<std::string> failed_;
  std::vector<std::size_t> clips_done_;
  std::vector<std::size_t> clips_total_;
  ProgressLine line_;
};

}  // namespace quillory::cli
