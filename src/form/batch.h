#pragma once
// Many exports in one run: where each one's titles go, and the sources worked on in threads.
// Each source has a controller of its own; the threads share nothing but read-only tables, so
// that every output is what a run on that source alone writes.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "form/controller.h"
#include "form/form.h"
#include "source/assumption_report.h"
#include "startup/startup.h"
#include "source/line_sink.h"

namespace quillory {

// One source of a batch and the file its titles go to.
struct BatchEntry {
  std::string source;
  std::string output;
};

struct BatchPlan {
  std::vector<BatchEntry> entries;
  // Why the batch cannot run: two sources would write one file. Empty when it can.
  std::string clash;
};

// Each source's titles go to `folder`/NAME.xml (NAME.fcpxml for an FCPXML file or bundle),
// NAME its file name without the extension, so
// two sources of one NAME (day1/dailies.xml and day2/dailies.xml) would overwrite each other:
// the plan then says so, before anything is read.
BatchPlan plan_batch(const std::vector<std::string>& sources, const std::string& folder);

// How many sources a batch works on at once unless told: one per core.
unsigned default_jobs();

// Calls `work` with every index below `count`, on `jobs` threads at most (the calling thread
// is one of them), lowest indexes first; returns when every call has. An exception that
// `work` lets out is thrown again once all have returned.
void run_in_parallel(std::size_t count, unsigned jobs,
                     const std::function<void(std::size_t index)>& work);

// What became of one source.
struct BatchResult {
  bool written = false;  // its titles were written (or it was listed, or previewed)
  std::string message;   // why not, for the user, naming the source
  bool incomplete = false;  // tolerant reading would have taken the source
  // The sequence or template the form names and the source lacks, and the names it has.
  struct Lacking {
    std::string kind;  // "sequence" or "template"
    std::string named;
    std::vector<std::string> offered;
  };
  std::optional<Lacking> lacking;
  AssumptionReport report;
};

// One source of a run, in a window's batch or on the command line: opens `source` into
// `controller` as `form` asks and, when it opened whole and has the sequence and the template
// the form names, hands it to `use` (which writes its titles, or lists or previews it) and
// keeps its report. A source that is not xmeml, was not read whole or lacks what the form
// names fails, named, and so does one that `use` throws for; never throws.
BatchResult run_on_source(const std::string& source, const Form& form, Controller& controller,
                          LineSink& out, const std::function<AssumptionReport()>& use);

}  // namespace quillory
