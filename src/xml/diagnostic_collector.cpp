#include "xml/diagnostic_collector.h"

// Before 2.12 the handler globals are declared in globals.h, which 2.12 deprecates.
#if LIBXML_VERSION < 21200
#include <libxml/globals.h>
#endif
#include <libxml/parser.h>

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
  // The parser's own reports carry its context, which knows how far into the text it got.
  long offset = -1;
  if ((error->domain == XML_FROM_PARSER || error->domain == XML_FROM_NAMESPACE) &&
      error->ctxt != nullptr) {
    offset = xmlByteConsumed(static_cast<xmlParserCtxtPtr>(error->ctxt));
  }
  static_cast<DiagnosticCollector*>(self)->diagnostics_.push_back(Diagnostic{
      error->line, static_cast<int>(error->level), error->code, std::move(message), offset});
}

}  // namespace quillory::xml
