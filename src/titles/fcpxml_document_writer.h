#pragma once
// The skeleton of a written FCPXML document: the declaration and document type, an <fcpxml>
// of the source's version, the resources the written project refers to (copied from the
// source with their ids, closed over the references between them) followed by the document's
// own (with ids that clash with nothing), and library > event > project around the project.
// What goes in the project is up to the caller.

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "source/fcpxml_resources.h"
#include "titles/destination.h"
#include "xml/xml_handles.h"

namespace quillory {

// The ids of a written document: every id the source uses is taken, and each new one is the
// first of its prefix ("r1", "r2"...; "ts1"...) that nothing has taken.
class FcpxmlIds {
 public:
  FcpxmlIds() = default;
  explicit FcpxmlIds(const xmlNode* source_root);
  std::string fresh(std::string_view prefix);

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, long long> next_;
};

// The resources of the source that `roots` (and the elements below them) refer to, directly or
// through another resource (an asset's format, a compound clip's items), in source order.
std::vector<const xmlNode*> fcpxml_resource_closure(const std::vector<const xmlNode*>& roots,
                                                    const FcpxmlResources& resources);

// The source's first <format> of this frame duration; null for none.
const xmlNode* find_format_by_duration(const xmlNode* source_root, const RationalTime& frame_duration);

class FcpxmlDocument {
 public:
  // An empty document of `source_root`'s version.
  explicit FcpxmlDocument(const xmlNode* source_root);

  xmlDoc* get() const { return doc_.get(); }
  FcpxmlIds& ids() { return ids_; }
  const FcpxmlResources& source_resources() const { return resources_; }

  // A <project> named `name` in library > event (named as the project), empty: the caller
  // adds its <sequence>.
  xmlNode* add_project(const std::string& name);
  // `project` (a copy of a source project, say) placed the same way; returns it.
  xmlNode* add_project(xml::Node project);

  // A resource of the document's own (a format, an effect), placed after the copied ones; it
  // gets a fresh id, which is returned.
  std::string add_resource(xml::Node resource);

  // Copies every source resource the document refers to, in source order, before its own.
  // Call once, when the project is complete.
  void copy_referred_resources();

  // Writes the document `to` a file (replaced whole once written) or a descriptor.
  void write(const Destination& to) const;

 private:
  xml::Document doc_;
  FcpxmlResources resources_;
  FcpxmlIds ids_;
  xmlNode* resources_element_ = nullptr;
  xmlNode* library_ = nullptr;
};

// A new element `name` of `doc`, unlinked, with the attributes in the order given.
xml::Node new_fcpxml_element(xmlDoc* doc, const char* name,
                             std::initializer_list<std::pair<const char*, std::string>> attributes = {});

}  // namespace quillory
