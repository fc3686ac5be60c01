#pragma once
// Scope guard that routes libxml2's structured errors into a list for as long as it lives and
// puts back whatever handler was installed before, also when the parse throws. The handler is
// the calling thread's own: libxml2 built with threads keeps it, like its other settings, per
// thread, so sources parsed in several threads at once each collect their own diagnostics.

#include <libxml/xmlerror.h>
#include <libxml/xmlversion.h>

#include <vector>

#ifndef LIBXML_THREAD_ENABLED
#error "libxml2 without threads shares one error handler between all threads"
#endif

#include "xml/read_xml.h"

namespace quillory::xml {

// libxml2 2.12 made the error handed to a structured handler const.
#if LIBXML_VERSION >= 21200
using ErrorReport = const xmlError*;
#else
using ErrorReport = xmlError*;
#endif

class DiagnosticCollector {
 public:
  DiagnosticCollector();
  ~DiagnosticCollector();
  DiagnosticCollector(const DiagnosticCollector&) = delete;
  DiagnosticCollector& operator=(const DiagnosticCollector&) = delete;

  std::vector<Diagnostic> take() { return std::move(diagnostics_); }

 private:
  static void on_error(void* self, ErrorReport error);

  std::vector<Diagnostic> diagnostics_;
  xmlStructuredErrorFunc previous_handler_;
  void* previous_context_;
};

}  // namespace quillory::xml
