#pragma once
// Owning handles for libxml2 objects: each frees its object with the library's own function.

#include <libxml/HTMLparser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>

#include <memory>

namespace quillory::xml {

struct DocumentDeleter {
  void operator()(xmlDoc* doc) const noexcept { xmlFreeDoc(doc); }
};
struct NodeDeleter {
  void operator()(xmlNode* node) const noexcept { xmlFreeNode(node); }
};
struct XPathContextDeleter {
  void operator()(xmlXPathContext* ctx) const noexcept { xmlXPathFreeContext(ctx); }
};
struct XPathObjectDeleter {
  void operator()(xmlXPathObject* obj) const noexcept { xmlXPathFreeObject(obj); }
};
struct XmlCharDeleter {
  void operator()(xmlChar* text) const noexcept { xmlFree(text); }
};

using Document = std::unique_ptr<xmlDoc, DocumentDeleter>;
// Records that point into a loaded source document share it, so the document lives exactly
// as long as the last record that refers into it.
using SharedDocument = std::shared_ptr<xmlDoc>;
using Node = std::unique_ptr<xmlNode, NodeDeleter>;
using XPathContext = std::unique_ptr<xmlXPathContext, XPathContextDeleter>;
using XPathObject = std::unique_ptr<xmlXPathObject, XPathObjectDeleter>;
using XmlString = std::unique_ptr<xmlChar, XmlCharDeleter>;

// A document as the node that XPath queries and tree walks start from.
inline xmlNode* as_node(xmlDoc* doc) { return reinterpret_cast<xmlNode*>(doc); }

inline SharedDocument share(Document doc) { return SharedDocument(doc.release(), DocumentDeleter{}); }

}  // namespace quillory::xml
