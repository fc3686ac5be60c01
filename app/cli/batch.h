#pragma once
// quillory [options] SOURCE...: every source run as a run on it alone would be, several at
// once, each one's titles to a file of their own in one folder.

#include "command_line.h"
#include "exit_code.h"
#include "form/batch.h"
#include "startup/startup.h"

namespace quillory::cli {

// Whether the command runs as a batch: several sources, or a folder for the output.
bool is_batch(const Options& options);

// Why the options cannot run as a batch (several sources writing without a folder, two of one
// name); empty when they can. Checked before anything is read or written.
std::string batch_usage_problem(const Options& options, const BatchPlan& plan);

// Runs every source of `plan` on options.jobs threads, writing (or listing, or previewing)
// each as a run on it alone with --output DIR/NAME.xml would; a source that fails is named
// with its message and does not stop the others.
ExitCode run_batch(const Options& options, const BatchPlan& plan, const OutputPaths& paths);

}  // namespace quillory::cli
