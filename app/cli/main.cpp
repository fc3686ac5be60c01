// quillory: turns the master clips of an xmeml export into a title sequence.

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

#include <unistd.h>

#include "batch.h"
#include "command_line.h"
#include "exit_code.h"
#include "source_run.h"
#include "terminal_progress.h"
#include "startup/startup.h"
#include "titles/replace_file.h"
#include "source/incomplete_input.h"

namespace {

using quillory::cli::ExitCode;

int status(ExitCode code) { return static_cast<int>(code); }

// One source, its lines on the standard streams as the run goes.
ExitCode run_alone(const quillory::cli::Options& options, const quillory::OutputPaths& paths) {
  const bool to_standard_output = options.output == "-";
  const bool on_terminal = isatty(STDERR_FILENO) == 1;
  const bool lines_on_terminal =
      !options.quiet && isatty(to_standard_output ? STDERR_FILENO : STDOUT_FILENO) == 1;
  const quillory::cli::SourceStreams streams{std::cout, std::cerr, [&](quillory::LineSink& lines) {
    return std::make_unique<quillory::cli::TerminalProgress>(lines, std::cerr, on_terminal,
                                                             lines_on_terminal);
  }};
  const auto outcome = quillory::cli::run_source(options, paths, streams);
  if (!outcome.failure.empty()) std::cerr << outcome.failure << "\n";
  return outcome.code;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{
      "Lays every media clip of a Final Cut Pro XML (xmeml) export end to end on a new "
      "sequence, with an information title over each one.",
      "quillory"};
  quillory::cli::Options options;
  quillory::cli::add_options(app, options);
  app.failure_message([](const CLI::App*, const CLI::Error& error) {
    return "quillory: " + std::string(error.what()) + "\nRun quillory --help for the options.\n";
  });
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? status(ExitCode::Success) : status(ExitCode::Usage);
  }
  const bool batch = quillory::cli::is_batch(options);
  const quillory::BatchPlan plan =
      batch ? quillory::plan_batch(options.sources, options.output_dir.value_or(""))
            : quillory::BatchPlan{};
  if (const std::string problem = batch ? quillory::cli::batch_usage_problem(options, plan) : "";
      !problem.empty()) {
    std::cerr << problem << "\nRun quillory --help for the options.\n";
    return status(ExitCode::Usage);
  }
  quillory::remove_unfinished_replacement_when_stopped();
  try {
    const quillory::OutputPaths paths = quillory::start_up();
    return status(batch ? quillory::cli::run_batch(options, plan, paths) : run_alone(options, paths));
  } catch (const std::exception& error) {
    std::cerr << quillory::failure_message(error, options.source) << "\n";
    return status(ExitCode::Failed);
  }
}
