#include "xml/diagnostic_collector.h"

// Before 2.12 the handler globals are declared in globals.h, which 2.12 deprecates.
#if LIBXML_VERSION < 21200
#include <libxml/globals.h>
#else
#include <libxml/parser.h>
#endif

#include <string>

namespace quillory::xml {

DiagnosticCollector::DiagnosticCollector()
    : previous_handler_(xmlStructuredError), previous_context_(xmlStructuredErrorContext) {
  xmlSetStructuredErrorFunc(this, &DiagnosticCollector::on_error);
}

DiagnosticCollector::~DiagnosticCollector() {
  xmlSetStructuredErrorFunc(previous_context_, previous_handler_);
}

void DiagnosticCollector::on_error(void* self, ErrorReport error) {
  if (self == nullptr || error == nullptr) return;
  std::string message = error->message != nullptr ? error->message : "unknown parser error";
  while (!message.empty() && (message.back() == '\n' || message.back() == ' ')) message.pop_back();
  static_cast<DiagnosticCollector*>(self)->diagnostics_.push_back(
      Diagnostic{error->line, static_cast<int>(error->level), error->code, std::move(message)});
}

}  // namespace quillory::xml
