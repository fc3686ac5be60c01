#pragma once
// Many exports in one run: where each one's titles go, and the sources worked on in threads.
// Each source has a controller of its own; the threads share nothing but read-only tables, so
// that every output is what a run on that source alone writes.

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

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

// Each source's titles go to `folder`/NAME.xml, NAME its file name without the extension, so
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
  bool written = false;
  std::string message;  // why nothing was written, for the user
  bool incomplete = false;  // tolerant reading would have taken the source
  std::size_t clips = 0;
  AssumptionReport report;
};

// Opens the entry's source and writes its titles as `form` asks, the sequence named after the
// source; never throws.
BatchResult create_titles_for(const BatchEntry& entry, Form form, const OutputPaths& paths,
                              LineSink& out);

}  // namespace quillory
