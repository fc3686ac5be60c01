#include "titles/fcpxml_document_writer.h"

#include <libxml/xmlsave.h>

#include <new>

#include "source/fcpxml_time.h"
#include "titles/node_copies.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

// The attributes by which FCPXML refers to a resource (its IDREFs).
constexpr const char* kReferences[] = {"ref", "format", "dataLocator", "projectRef", "tracking"};

// Calls `visit` with every resource id that `element` or an element below it refers to.
template <typename Visit>
void for_each_reference(const xmlNode* element, Visit visit) {
  const auto of = [&visit](const xmlNode* node) {
    for (const char* name : kReferences) {
      if (auto id = xml::attribute(node, name)) visit(*id);
    }
  };
  of(element);
  xml::walk_elements(element, [&of](xmlNode* node) { of(node); });
}

xmlNode* append(xmlNode* parent, xml::Node child) {
  xmlNode* added = xmlAddChild(parent, child.get());
  if (added == nullptr) throw std::bad_alloc();
  child.release();
  return added;
}

}  // namespace

FcpxmlIds::FcpxmlIds(const xmlNode* source_root) {
  const auto take = [this](const xmlNode* node) {
    if (auto id = xml::attribute(node, "id")) taken_.insert(*id);
  };
  take(source_root);
  xml::walk_elements(source_root, [&take](xmlNode* node) { take(node); });
}

std::string FcpxmlIds::fresh(std::string_view prefix) {
  long long& next = next_[std::string(prefix)];
  for (;;) {
    std::string id = std::string(prefix) + std::to_string(++next);
    if (taken_.insert(id).second) return id;
  }
}

std::vector<const xmlNode*> fcpxml_resource_closure(const std::vector<const xmlNode*>& roots,
                                                    const FcpxmlResources& resources) {
  std::unordered_set<const xmlNode*> found;
  std::vector<const xmlNode*> pending;
  const auto refer = [&](const std::string& id) {
    const xmlNode* resource = resources.find(id);
    if (resource != nullptr && found.insert(resource).second) pending.push_back(resource);
  };
  for (const xmlNode* root : roots) for_each_reference(root, refer);
  while (!pending.empty()) {
    const xmlNode* resource = pending.back();
    pending.pop_back();
    for_each_reference(resource, refer);
  }
  std::vector<const xmlNode*> ordered;
  if (found.empty()) return ordered;
  // Every resource found is a child of the one <resources>: its order is theirs.
  for (const xmlNode* node = (*found.begin())->parent->children; node != nullptr; node = node->next) {
    if (found.contains(node)) ordered.push_back(node);
  }
  return ordered;
}

const xmlNode* find_format_by_duration(const xmlNode* source_root,
                                       const RationalTime& frame_duration) {
  const xmlNode* resources = xml::first_child_element(source_root, "resources");
  if (resources == nullptr) return nullptr;
  for (const xmlNode* format : xml::elements_at(resources, {"format"})) {
    const auto text = xml::attribute(format, "frameDuration");
    const auto duration = text ? read_fcpxml_time(*text) : std::nullopt;
    if (duration && *duration == frame_duration) return format;
  }
  return nullptr;
}

xml::Node new_fcpxml_element(xmlDoc* doc, const char* name,
                             std::initializer_list<std::pair<const char*, std::string>> attributes) {
  xml::Node element(xmlNewDocNode(doc, nullptr, BAD_CAST name, nullptr));
  if (!element) throw std::bad_alloc();
  for (const auto& [attribute, value] : attributes) {
    xmlNewProp(element.get(), BAD_CAST attribute, BAD_CAST value.c_str());
  }
  return element;
}

FcpxmlDocument::FcpxmlDocument(const xmlNode* source_root)
    : doc_(xmlNewDoc(BAD_CAST "1.0")), resources_(source_root),
      ids_(source_root) {
  if (!doc_) throw std::bad_alloc();
  doc_->encoding = xmlStrdup(BAD_CAST "UTF-8");
  xmlCreateIntSubset(doc_.get(), BAD_CAST "fcpxml", nullptr, nullptr);
  xml::Node root = new_fcpxml_element(doc_.get(), "fcpxml", {{"version", fcpxml_version(source_root)}});
  xmlDocSetRootElement(doc_.get(), root.release());
  resources_element_ = append(xmlDocGetRootElement(doc_.get()), new_fcpxml_element(doc_.get(), "resources"));
}

xmlNode* FcpxmlDocument::add_project(const std::string& name) {
  return add_project(new_fcpxml_element(doc_.get(), "project", {{"name", name}}));
}

xmlNode* FcpxmlDocument::add_project(xml::Node project) {
  // Resolve takes a project only inside an event of a library.
  if (library_ == nullptr) {
    library_ = append(xmlDocGetRootElement(doc_.get()), new_fcpxml_element(doc_.get(), "library"));
  }
  const std::string name = xml::attribute(project.get(), "name").value_or("");
  xmlNode* event = append(library_, new_fcpxml_element(doc_.get(), "event", {{"name", name}}));
  return append(event, std::move(project));
}

std::string FcpxmlDocument::add_resource(xml::Node resource) {
  std::string id = ids_.fresh("r");
  // A resource's id comes first, as Final Cut Pro writes it.
  xmlAttr* first = resource->properties;
  xmlAttr* added = xmlSetProp(resource.get(), BAD_CAST "id", BAD_CAST id.c_str());
  if (added == nullptr) throw std::bad_alloc();
  if (first != nullptr && added != first) {
    added->prev->next = nullptr;
    added->prev = nullptr;
    added->next = first;
    first->prev = added;
    resource->properties = added;
  }
  append(resources_element_, std::move(resource));
  return id;
}

void FcpxmlDocument::copy_referred_resources() {
  std::vector<const xmlNode*> roots;
  for (const xmlNode* node = xmlDocGetRootElement(doc_.get())->children; node != nullptr; node = node->next) {
    roots.push_back(node);  // the document's own resources and the library
  }
  xmlNode* first_own = resources_element_->children;
  for (const xmlNode* resource : fcpxml_resource_closure(roots, resources_)) {
    xml::Node copy = clean_copy(resource, doc_.get());
    if (first_own != nullptr) {
      xmlAddPrevSibling(first_own, copy.release());
    } else {
      append(resources_element_, std::move(copy));
    }
  }
}

void FcpxmlDocument::write(const Destination& to) const {
  deliver(to, [this](int fd) {
    xmlSaveCtxt* save = xmlSaveToFd(fd, "UTF-8", XML_SAVE_FORMAT);
    if (save == nullptr) return false;
    const bool saved = xmlSaveDoc(save, doc_.get()) >= 0;
    return xmlSaveClose(save) >= 0 && saved;
  });
}

}  // namespace quillory
