#include "titles/fcpxml_titles_over_project.h"

#include <unordered_map>

#include "source/fcpxml_clip_facts.h"
#include "source/fcpxml_shots.h"
#include "source/user_message.h"
#include "titles/compose_title_text.h"
#include "titles/fcpxml_document_writer.h"
#include "titles/fcpxml_title.h"
#include "titles/node_copies.h"
#include "titles/title_prototype.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

std::vector<xmlNode*> element_children(const xmlNode* parent) {
  std::vector<xmlNode*> elements;
  for (xmlNode* child = parent != nullptr ? parent->children : nullptr; child != nullptr;
       child = child->next) {
    if (child->type == XML_ELEMENT_NODE) elements.push_back(child);
  }
  return elements;
}

// The copy of each item of the source's primary storyline (an audition's pick for an audition),
// found by place among the storyline's elements: the copy holds the same elements in the same
// order.
class AnchorCopies {
 public:
  AnchorCopies(const xmlNode* source_sequence, const xmlNode* copied_sequence) {
    const auto sources = element_children(xml::first_child_element(source_sequence, "spine"));
    const auto copies = element_children(xml::first_child_element(copied_sequence, "spine"));
    for (std::size_t i = 0; i < sources.size() && i < copies.size(); ++i) {
      copies_.emplace(fcpxml_audition_pick(sources[i]),
                      const_cast<xmlNode*>(fcpxml_audition_pick(copies[i])));
    }
  }

  xmlNode* find(const xmlNode* source) const {
    const auto found = copies_.find(source);
    return found != copies_.end() ? found->second : nullptr;
  }

 private:
  std::unordered_map<const xmlNode*, xmlNode*> copies_;
};

int dimension(const xmlNode* format, const char* name, int otherwise) {
  const long long value = xml::leading_integer(xml::attribute(format, name).value_or(""));
  return value > 0 && value <= 1 << 16 ? static_cast<int>(value) : otherwise;
}

}  // namespace

FcpxmlFrame fcpxml_project_sequence_frame(const xmlNode* project) {
  const FcpxmlResources resources(xmlDocGetRootElement(project->doc));
  const xmlNode* sequence = xml::first_child_element(project, "sequence");
  const xmlNode* format = resources.find(xml::attribute(sequence, "format").value_or(""), "format");
  return {dimension(format, "width", 1920), dimension(format, "height", 1080)};
}

AssumptionReport create_fcpxml_over_project(const std::vector<TitleTemplate>& templates,
                                            const std::vector<ClipRecord>& shots,
                                            const TitleSettings& settings, const xmlNode* project,
                                            const Destination& to, LineSink& out) {
  to.require_known();
  const xmlNode* root = xmlDocGetRootElement(project->doc);
  const TitleTemplate& chosen = choose_template(templates, settings.template_name);
  FcpxmlDocument output(root);
  xmlDoc* doc = output.get();
  const FcpxmlResources& resources = output.source_resources();
  const xmlNode* source_sequence = xml::first_child_element(project, "sequence");

  xml::Node copy = clean_copy(project, doc);
  xmlSetProp(copy.get(), BAD_CAST "name", BAD_CAST settings.sequence_name.c_str());
  xmlNode* copied = output.add_project(std::move(copy));
  const AnchorCopies anchors(source_sequence, xml::first_child_element(copied, "sequence"));

  const FcpxmlTitleMaker titles(chosen, fcpxml_title_effect(chosen, output),
                                fcpxml_project_sequence_frame(project).height, output.ids());
  // The shots the records were read from, for where each lies; the records give the text.
  const std::vector<FcpxmlShot> places = fcpxml_shots(source_sequence, resources);
  if (places.size() != shots.size()) fail("the shots of the project changed since it was read");
  const auto frame_duration =
      resources.frame_duration(xml::attribute(source_sequence, "format").value_or(""));
  const long long lane = fcpxml_title_lane(source_sequence);
  for (std::size_t i = 0; i < shots.size(); ++i) {
    const FcpxmlShot& place = places[i];
    out.line("Clip " + std::to_string(i + 1) + " at " + std::to_string(place.first_frame));
    out.line("  " + shots[i].clip_name + ", " + shots[i].file_name + ", " +
             std::to_string(place.length));
    xmlNode* parent = anchors.find(place.anchor);
    if (parent == nullptr) {
      fail("shot " + std::to_string(i + 1) + " (" + xml::where(place.item) +
           ") lies over no item of the primary storyline; nothing was written");
    }
    const RationalTime length(place.length * frame_duration->value(), frame_duration->scale());
    anchor_item(parent, titles.make(doc, fcpxml_title_text(compose_title_text(shots[i], settings.lines)),
                                    {place.anchor_time, length, lane}));
    out.progress("writing", i + 1, shots.size());
  }
  output.copy_referred_resources();
  output.write(to);
  AssumptionReport report = report_assumptions(templates, shots);
  if (shots.empty()) {
    report.warnings.push_back("quillory: warning: no clip item is seen in the project \"" +
                              shown(xml::attribute(project, "name").value_or("")) + "\" (" +
                              xml::where(project) + "): it holds no title");
  }
  return report;
}

}  // namespace quillory
