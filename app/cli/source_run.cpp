#include "source_run.h"

#include <unistd.h>

#include "listing.h"
#include "form/batch.h"
#include "titles/destination.h"

namespace quillory::cli {
namespace {

// Follows every error that --tolerant would have taken with an assumption.
constexpr const char* kTolerantHint = " (--tolerant accepts this)";

SourceOutcome failed(ExitCode code, std::string message) { return {code, std::move(message)}; }

void print_report(const AssumptionReport& report, std::ostream& err) {
  for (const auto& warning : report.warnings) err << warning << "\n";
  if (!report.summary.empty()) err << report.summary << "\n";
}

// "--output -", or a path to the stream standard output is (/dev/stdout): the document itself
// goes to standard output, alone.
bool writes_to_standard_output(const Options& options) {
  return options.output == "-" || (options.output && names_stream(*options.output, STDOUT_FILENO));
}

// The progress lines go to standard output, unless that carries what the user asked to see.
std::unique_ptr<LineSink> progress_sink(const Options& options, const SourceStreams& streams) {
  if (options.quiet) return std::make_unique<NullSink>();
  const bool shows_other = options.list || options.preview || writes_to_standard_output(options);
  return std::make_unique<StreamSink>(shows_other ? streams.err : streams.out);
}

// A document without master clips most often holds an edit: say what it holds instead.
void report_no_clip(const Options& options, const OpenedSource& source, std::ostream& err) {
  if (!source.clips.empty() || options.sequence) return;
  const bool fcpxml = source.format == SourceFormat::Fcpxml;
  const char* sequence = fcpxml ? "project" : "sequence";
  err << "quillory: " << options.source << " holds no " << (fcpxml ? "event clip" : "master clip");
  if (source.sequences.empty()) {
    err << " and no " << sequence << "\n";
    return;
  }
  err << "; it holds the " << sequence << (source.sequences.size() > 1 ? "s" : "");
  for (std::size_t i = 0; i < source.sequences.size(); ++i) {
    err << (i == 0 ? " \"" : ", \"") << source.sequences[i].name << '"';
  }
  err << ": --sequence NAME titles the shots of one\n";
}

// Prints what --list or --preview asks to see.
void show(const Options& options, const Controller& controller, const Form& form,
          const SourceStreams& streams) {
  if (options.preview) {
    print_preview(controller.source().clips, controller.title_settings(form).lines, streams.out);
  } else if (options.json) {
    // In a batch each listing names its source, to tell the array's objects apart.
    const media::MediaFolder folder(options.media_folder.value_or(""));
    print_json_listing(controller.source(), streams.out,
                       options.sources.size() > 1 ? std::optional(options.source) : std::nullopt,
                       options.media_folder ? &folder : nullptr);
  } else {
    print_listing(controller.source(), streams.out);
  }
  print_report(controller.opening_report(), streams.err);
}

// Writes the open source's titles where the options say.
void write(const Options& options, const Controller& controller, const Form& form,
           const SourceStreams& streams, LineSink& progress) {
  const bool to_standard_output = writes_to_standard_output(options);
  const auto path = options.output ? options.output : controller.default_output();
  AssumptionReport report;
  {
    const auto display = streams.display(progress);
    streams.out.flush();
    report = to_standard_output ? controller.create_fcp_xml(form, *display, STDOUT_FILENO)
                                : controller.create_fcp_xml(form, *display, path);
  }
  print_report(report, streams.err);
  streams.err << "quillory: wrote " << (to_standard_output ? "the titles to standard output" : *path)
              << "\n";
}

}  // namespace

SourceOutcome run_source(const Options& options, const OutputPaths& paths,
                         const SourceStreams& streams) {
  const auto path = options.output ? options.output : paths.TEMP_XML_FILE;
  // An output no document can go to is refused before the source is read.
  if (!options.list && !options.preview && !writes_to_standard_output(options) && path) {
    delivery_to(*path);
  }
  const auto progress = progress_sink(options, streams);
  Controller controller(paths);
  const Form form = form_from_options(options);
  bool timecode_reader_refused = false;
  const BatchResult result = run_on_source(options.source, form, controller, *progress, [&] {
    // FCPXML has no Timecode Reader filter to put on a clip.
    if (options.tcr && controller.fcpxml()) {
      timecode_reader_refused = true;
      return AssumptionReport{};
    }
    report_no_clip(options, controller.source(), streams.err);
    if (options.list || options.preview) {
      show(options, controller, form, streams);
    } else {
      write(options, controller, form, streams, *progress);
    }
    return AssumptionReport{};
  });
  if (timecode_reader_refused) {
    return failed(ExitCode::Usage, "quillory: --tcr: " + options.source +
                                       " is an FCPXML document, which has no Timecode Reader "
                                       "filter; run without --tcr");
  }
  if (result.written) return {};
  if (const auto& lacking = result.lacking) {
    return failed(ExitCode::Usage, "quillory: --" + lacking->kind + ": " +
                                       unknown_value_message(lacking->kind, lacking->named,
                                                             lacking->offered));
  }
  return failed(ExitCode::Failed, result.message + (result.incomplete ? kTolerantHint : ""));
}

}  // namespace quillory::cli
