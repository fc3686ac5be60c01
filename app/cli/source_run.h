#pragma once
// One source's run, as the command makes it on its own or for each source of a batch: open
// it, then list, preview or write it as the options ask.

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "command_line.h"
#include "exit_code.h"
#include "startup/startup.h"
#include "source/line_sink.h"

namespace quillory::cli {

// Where a run shows what it says: a run on its own writes to the standard streams as it goes,
// each source of a batch to buffers of its own that are printed whole once it is done.
struct SourceStreams {
  std::ostream& out;  // what standard output carries
  std::ostream& err;  // messages for the user
  // What watches the writing of titles, given the run's lines to pass on: the terminal's
  // progress line for a run on its own, the batch's line in a batch.
  std::function<std::unique_ptr<LineSink>(LineSink& lines)> display;
};

struct SourceOutcome {
  ExitCode code = ExitCode::Success;
  // Why the run failed, as the user is to read it; empty when it did not.
  std::string failure;
};

// Runs `options.source` as `options` ask; the failure's message is returned, not printed.
// Never throws.
SourceOutcome run_source(const Options& options, const OutputPaths& paths,
                         const SourceStreams& streams);

}  // namespace quillory::cli
