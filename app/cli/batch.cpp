#include "batch.h"

#include <unistd.h>

#include <sstream>

#include "batch_console.h"
#include "listing.h"
#include "source_run.h"
#include "startup/make_folder.h"

namespace quillory::cli {
namespace {

bool writes(const Options& options) { return !options.list && !options.preview; }

// Passes a source's lines on and tells the console how far its writing has got.
class SourceProgress : public LineSink {
 public:
  SourceProgress(LineSink& lines, BatchConsole& console, std::size_t index)
      : lines_(lines), console_(console), index_(index) {}
  void line(std::string_view text) override { lines_.line(text); }
  void progress(std::string_view stage, std::size_t done, std::size_t total) override {
    console_.progress(index_, stage == "writing" ? done : 0, total);
  }

 private:
  LineSink& lines_;
  BatchConsole& console_;
  std::size_t index_;
};

// One source's run, its lines kept until the console prints them.
FinishedSource run_one(Options options, const BatchEntry& entry, const OutputPaths& paths,
                       BatchConsole& console, std::size_t index) {
  options.source = entry.source;
  if (writes(options)) options.output = entry.output;
  std::ostringstream out, err;
  // Listings and previews as text: a heading says whose each is, as head(1) does.
  if (!writes(options) && !options.json && options.sources.size() > 1) {
    out << (index == 0 ? "" : "\n") << "==> " << entry.source << " <==\n";
  }
  const SourceStreams streams{out, err, [&](LineSink& lines) {
    return std::make_unique<SourceProgress>(lines, console, index);
  }};
  FinishedSource finished{{}, {}, run_source(options, paths, streams)};
  // A listing that failed is still one element of the array: its source and why.
  if (options.json && options.sources.size() > 1 && !finished.outcome.failure.empty()) {
    out.str({});
    print_json_failure(entry.source, finished.outcome.failure, out);
  }
  finished.out = std::move(out).str();
  finished.err = std::move(err).str();
  return finished;
}

}  // namespace

bool is_batch(const Options& options) {
  return options.sources.size() > 1 || options.output_dir.has_value();
}

std::string batch_usage_problem(const Options& options, const BatchPlan& plan) {
  if (!writes(options)) return {};
  if (!options.output_dir) {
    return "quillory: several sources need --output-dir DIR: each one's titles go to "
           "DIR/NAME.xml";
  }
  return plan.clash;
}

ExitCode run_batch(const Options& options, const BatchPlan& plan, const OutputPaths& paths) {
  if (writes(options)) {
    make_folder(*options.output_dir, "quillory: cannot create the output folder " + *options.output_dir);
  }
  const bool json_array = options.list && options.json && options.sources.size() > 1;
  const char* done_as = options.list ? "listed" : options.preview ? "previewed" : "written";
  BatchConsole console(options.sources, done_as, json_array, isatty(STDERR_FILENO) == 1);
  run_in_parallel(plan.entries.size(), options.jobs != 0 ? options.jobs : default_jobs(),
                  [&](std::size_t index) {
                    console.finished(index, run_one(options, plan.entries[index], paths, console, index));
                  });
  return console.close();
}

}  // namespace quillory::cli
