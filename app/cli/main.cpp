// quillory: turns the master clips of an xmeml export into a title sequence.

#include <CLI/CLI.hpp>

#include <iostream>

#include "command_line.h"
#include "exit_code.h"
#include "listing.h"
#include "startup/controller.h"

namespace {

using quillory::cli::ExitCode;

int status(ExitCode code) { return static_cast<int>(code); }

// The sequence rate: the one asked for, else the first rate met among the source's clips.
void set_sequence_rate(const quillory::cli::Options& options, quillory::Controller& controller) {
  if (options.rate) {
    controller.set_sequence_rate(*options.rate);
  } else if (!controller.fields().frame_rates.empty()) {
    controller.set_sequence_rate(controller.fields().frame_rates.front());
  }
}

int run(const quillory::cli::Options& options) {
  quillory::StreamSink out(std::cout);
  quillory::MemoryForm form;
  quillory::cli::fill_form(options, form);
  quillory::Controller controller(form.form(), out, quillory::start_up());

  controller.get_info_from_clips(options.source);
  if (controller.fields().templates_array.empty()) {
    std::cerr << "quillory: " << options.source
              << " is not an xmeml document (its first node is not <xmeml>); nothing was written\n";
    return status(ExitCode::Failed);
  }
  set_sequence_rate(options, controller);
  if (options.list) {
    quillory::cli::print_listing(controller.fields(), std::cerr);
    return status(ExitCode::Success);
  }
  if (options.preview) {
    quillory::cli::print_preview(controller.fields(), form.form(), std::cerr);
    return status(ExitCode::Success);
  }
  const auto path = options.output ? options.output : controller.paths().TEMP_XML_FILE;
  controller.create_fcp_xml(path);
  std::cerr << "quillory: wrote " << *path << "\n";
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
  try {
    return run(options);
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return status(ExitCode::Failed);
  }
}
