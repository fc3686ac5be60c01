#include "xml/xpath_query.h"

#include <stdexcept>

namespace quillory::xml {

XPathQuery::XPathQuery(const char* expression)
    : expression_(expression),
      compiled_(xmlXPathCompile(reinterpret_cast<const xmlChar*>(expression))),
      context_(xmlXPathNewContext(nullptr)) {
  if (!compiled_ || !context_) {
    throw std::logic_error("quillory: cannot compile the XPath expression " + expression_);
  }
}

XPathObject XPathQuery::evaluate(xmlNode* context) {
  // One context serves every document: the document is taken from the node each time, which
  // is what absolute paths such as "//clip" start from.
  context_->doc = context->type == XML_DOCUMENT_NODE || context->type == XML_HTML_DOCUMENT_NODE
                      ? reinterpret_cast<xmlDoc*>(context)
                      : context->doc;
  context_->node = context;
  XPathObject result(xmlXPathCompiledEval(compiled_.get(), context_.get()));
  if (!result) throw std::runtime_error("quillory: the XPath query " + expression_ + " failed");
  return result;
}

std::vector<xmlNode*> XPathQuery::all(xmlNode* context) {
  XPathObject result = evaluate(context);
  std::vector<xmlNode*> nodes;
  if (result->type == XPATH_NODESET && result->nodesetval != nullptr) {
    nodes.assign(result->nodesetval->nodeTab,
                 result->nodesetval->nodeTab + result->nodesetval->nodeNr);
  }
  return nodes;
}

xmlNode* XPathQuery::first(xmlNode* context) {
  XPathObject result = evaluate(context);
  if (result->type != XPATH_NODESET || result->nodesetval == nullptr ||
      result->nodesetval->nodeNr == 0) {
    return nullptr;
  }
  return result->nodesetval->nodeTab[0];
}

}  // namespace quillory::xml
