#pragma once
// An XPath expression compiled once and evaluated against many context nodes: the per-element
// queries of a run are compiled before the loop, never inside it.

#include <string>
#include <vector>

#include "xml/xml_handles.h"

namespace quillory::xml {

class XPathQuery {
 public:
  explicit XPathQuery(const char* expression);

  // All matches in document order. `context` may be a document, cast to xmlNode*.
  std::vector<xmlNode*> all(xmlNode* context);
  // The first match in document order, or null.
  xmlNode* first(xmlNode* context);

  const std::string& expression() const { return expression_; }

 private:
  XPathObject evaluate(xmlNode* context);

  std::string expression_;
  XPathExpression compiled_;
  XPathContext context_;
};

}  // namespace quillory::xml
