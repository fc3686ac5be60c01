#pragma once
// Scope guard that routes libxml2's structured errors into a list for as long as it lives and
// puts back whatever handler was installed before, also when the parse throws.

#include <libxml/xmlerror.h>

#include <vector>

#include "source/read_xml.h"

namespace quillory::xml {

class DiagnosticCollector {
 public:
  DiagnosticCollector();
  ~DiagnosticCollector();
  DiagnosticCollector(const DiagnosticCollector&) = delete;
  DiagnosticCollector& operator=(const DiagnosticCollector&) = delete;

  std::vector<Diagnostic> take() { return std::move(diagnostics_); }

 private:
  static void on_error(void* self, xmlError* error);

  std::vector<Diagnostic> diagnostics_;
  xmlStructuredErrorFunc previous_handler_;
  void* previous_context_;
};

}  // namespace quillory::xml
