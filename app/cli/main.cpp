// quillory: turns the master clips of an xmeml export into a title sequence.

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iostream>
#include <memory>

#include <unistd.h>

#include "command_line.h"
#include "exit_code.h"
#include "listing.h"
#include "terminal_progress.h"
#include "form/controller.h"
#include "startup/startup.h"
#include "titles/replace_file.h"
#include "source/incomplete_input.h"

namespace {

using quillory::cli::ExitCode;

int status(ExitCode code) { return static_cast<int>(code); }

// Follows every error that --tolerant would have taken with an assumption.
constexpr const char* kTolerantHint = " (--tolerant accepts this)";

void print_report(const quillory::AssumptionReport& report) {
  for (const auto& warning : report.warnings) std::cerr << warning << "\n";
  if (!report.summary.empty()) std::cerr << report.summary << "\n";
}

// "--output -": the document itself goes to standard output.
bool writes_to_standard_output(const quillory::cli::Options& options) {
  return options.output == "-";
}

// The progress lines go to standard output, unless that carries what the user asked to see.
std::unique_ptr<quillory::LineSink> progress_sink(const quillory::cli::Options& options) {
  if (options.quiet) return std::make_unique<quillory::NullSink>();
  const bool shows_other = options.list || options.preview || writes_to_standard_output(options);
  return std::make_unique<quillory::StreamSink>(shows_other ? std::cerr : std::cout);
}

// A document without master clips most often holds an edit: say what it holds instead.
void report_no_clip(const quillory::cli::Options& options, const quillory::OpenedSource& source) {
  if (!source.clips.empty() || options.sequence) return;
  std::cerr << "quillory: " << options.source << " holds no master clip";
  if (source.sequences.empty()) {
    std::cerr << " and no sequence\n";
    return;
  }
  std::cerr << "; it holds the sequence" << (source.sequences.size() > 1 ? "s" : "");
  for (std::size_t i = 0; i < source.sequences.size(); ++i) {
    std::cerr << (i == 0 ? " \"" : ", \"") << source.sequences[i].name << '"';
  }
  std::cerr << ": --sequence NAME titles the shots of one\n";
}

// The template a user names must be one the source offers.
bool template_offered(const quillory::cli::Options& options, const quillory::OpenedSource& source) {
  if (!options.template_name) return true;
  std::vector<std::string> names;
  for (const auto& title : source.templates) names.push_back(title.name);
  if (std::find(names.begin(), names.end(), *options.template_name) != names.end()) return true;
  std::cerr << "quillory: --template: "
            << quillory::cli::unknown_value_message("template", *options.template_name, names)
            << "\n";
  return false;
}

int run(const quillory::cli::Options& options) {
  const auto progress = progress_sink(options);
  quillory::Controller controller(quillory::start_up());
  const quillory::Form form = quillory::cli::form_from_options(options);
  const quillory::OpenOutcome opened = controller.get_info_from_clips(options.source, form, *progress);
  switch (opened.status) {
    case quillory::OpenStatus::Opened:
      break;
    case quillory::OpenStatus::NotXmeml:
      std::cerr << "quillory: " << options.source
                << " is not an xmeml document (its first node is not <xmeml>); nothing was written\n";
      return status(ExitCode::Failed);
    case quillory::OpenStatus::NoSequence:
      std::cerr << "quillory: --sequence: "
                << quillory::cli::unknown_value_message("sequence", *options.sequence, opened.sequences)
                << "\n";
      return status(ExitCode::Usage);
    case quillory::OpenStatus::Unreadable:
    case quillory::OpenStatus::Broken:
      std::cerr << opened.error << (opened.incomplete ? kTolerantHint : "") << "\n";
      return status(ExitCode::Failed);
  }
  if (!template_offered(options, controller.source())) return status(ExitCode::Usage);
  report_no_clip(options, controller.source());
  if (options.list) {
    if (options.json) {
      quillory::cli::print_json_listing(controller.source(), std::cout);
    } else {
      quillory::cli::print_listing(controller.source(), std::cout);
    }
    print_report(controller.opening_report());
    return status(ExitCode::Success);
  }
  if (options.preview) {
    quillory::cli::print_preview(controller.source().clips, controller.title_settings(form).lines,
                                 std::cout);
    print_report(controller.opening_report());
    return status(ExitCode::Success);
  }
  const bool to_standard_output = writes_to_standard_output(options);
  const auto path = options.output ? options.output : controller.paths().TEMP_XML_FILE;
  quillory::AssumptionReport report;
  {
    const bool on_terminal = isatty(STDERR_FILENO) == 1;
    const bool lines_on_terminal =
        !options.quiet && isatty(to_standard_output ? STDERR_FILENO : STDOUT_FILENO) == 1;
    quillory::cli::TerminalProgress display(*progress, std::cerr, on_terminal, lines_on_terminal);
    std::cout.flush();
    report = to_standard_output ? controller.create_fcp_xml(form, display, STDOUT_FILENO)
                                : controller.create_fcp_xml(form, display, path);
  }
  print_report(report);
  std::cerr << "quillory: wrote " << (to_standard_output ? "the titles to standard output" : *path)
            << "\n";
  return status(ExitCode::Success);
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
  quillory::remove_unfinished_replacement_when_stopped();
  try {
    return run(options);
  } catch (const quillory::IncompleteInput& error) {
    std::cerr << error.what() << kTolerantHint << "\n";
    return status(ExitCode::Failed);
  } catch (const std::exception& error) {
    std::cerr << quillory::failure_message(error, options.source) << "\n";
    return status(ExitCode::Failed);
  }
}
