#include "titles/fcpxml_writer.h"

#include "source/fcpxml_clip_facts.h"
#include "source/fcpxml_resources.h"
#include "source/fcpxml_time.h"
#include "titles/compose_title_text.h"
#include "titles/fcpxml_document_writer.h"
#include "titles/fcpxml_title.h"
#include "titles/node_copies.h"
#include "titles/title_prototype.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

// The new project's format: the source's own of the rate where it has one, else one to add.
struct ProjectFormat {
  const xmlNode* source_format = nullptr;
  FcpxmlFrame frame;
};

int dimension(const xmlNode* format, const char* name, int otherwise) {
  const auto text = xml::attribute(format, name);
  const long long value = text ? xml::leading_integer(*text) : 0;
  return value > 0 && value <= 1 << 16 ? static_cast<int>(value) : otherwise;
}

ProjectFormat project_format(const std::vector<ClipRecord>& clips, const xmlNode* root,
                             const FrameRate& rate) {
  ProjectFormat chosen;
  if ((chosen.source_format = find_format_by_duration(root, rate.frames(1))) != nullptr) {
    chosen.frame = {dimension(chosen.source_format, "width", 1920),
                    dimension(chosen.source_format, "height", 1080)};
    return chosen;
  }
  const FcpxmlResources resources(root);
  for (const ClipRecord& clip : clips) {
    const xmlNode* item = fcpxml_audition_pick(clip.xml);
    const xmlNode* media =
        fcpxml_media_point(item, fcpxml_time_attribute(item, "start"), resources).media_item;
    if (!fcpxml_shows_picture(item, media, resources)) continue;
    const xmlNode* format = fcpxml_clip_format(item, media, resources);
    chosen.frame = {dimension(format, "width", 1920), dimension(format, "height", 1080)};
    break;
  }
  return chosen;
}

// The attribute `name` set to `time` as FCPXML writes times.
void set_time(xmlNode* element, const char* name, const RationalTime& time) {
  xmlSetProp(element, BAD_CAST name, BAD_CAST fcpxml_time_text(time).c_str());
}

}  // namespace

FcpxmlFrame fcpxml_project_frame(const std::vector<ClipRecord>& clips, const xmlDoc* source,
                                 const FrameRate& rate) {
  const xmlNode* root = xmlDocGetRootElement(source);
  return root != nullptr ? project_format(clips, root, rate).frame : FcpxmlFrame{};
}

AssumptionReport create_fcpxml(const std::vector<TitleTemplate>& templates,
                               const std::vector<ClipRecord>& clips, const TitleSettings& settings,
                               const xmlDoc* source, const Destination& to, LineSink& out) {
  to.require_known();
  const xmlNode* root = xmlDocGetRootElement(source);
  const TitleTemplate& chosen = choose_template(templates, settings.template_name);
  FcpxmlDocument output(root);
  xmlDoc* doc = output.get();

  const FrameRate& rate = settings.rate;
  const ProjectFormat format = project_format(clips, root, rate);
  const std::string format_id =
      format.source_format != nullptr
          ? xml::attribute(format.source_format, "id").value_or("")
          : output.add_resource(new_fcpxml_element(
                doc, "format",
                {{"frameDuration", fcpxml_time_text(rate.frames(1))},
                 {"width", std::to_string(format.frame.width)},
                 {"height", std::to_string(format.frame.height)}}));
  const FcpxmlTitleMaker titles(chosen, fcpxml_title_effect(chosen, output), format.frame.height,
                                output.ids());

  xmlNode* project = output.add_project(settings.sequence_name);
  xmlNode* sequence = xmlAddChild(project, new_fcpxml_element(doc, "sequence",
                                                              {{"format", format_id},
                                                               {"duration", "0s"},
                                                               {"tcStart", "0s"},
                                                               {"tcFormat", rate.drop_frame() ? "DF" : "NDF"}})
                                               .release());
  xmlNode* spine = xmlAddChild(sequence, new_fcpxml_element(doc, "spine").release());

  long long position = 0;
  for (std::size_t i = 0; i < clips.size(); ++i) {
    const ClipRecord& clip = clips[i];
    out.line("Clip " + std::to_string(i + 1) + " at " + std::to_string(position));
    // The clip runs its own length, counted in whole frames of the project.
    const long long length =
        fcpxml_time_attribute(clip.xml, "duration").rescaled_to(rate.per_second()).value();
    out.line("  " + clip.clip_name + ", " + clip.file_name + ", " + std::to_string(length));
    xml::Node copy = clean_copy(clip.xml, doc);
    xmlUnsetProp(copy.get(), BAD_CAST "lane");
    set_time(copy.get(), "offset", rate.frames(position));
    set_time(copy.get(), "duration", rate.frames(length));
    // An audition's title belongs to the clip it shows.
    auto* parent = const_cast<xmlNode*>(fcpxml_audition_pick(copy.get()));
    const FcpxmlTitlePlace place{fcpxml_time_attribute(parent, "start"), rate.frames(length), 1};
    anchor_item(parent, titles.make(doc, fcpxml_title_text(compose_title_text(clip, settings.lines)), place));
    xmlAddChild(spine, copy.release());
    position += length;
    out.progress("writing", i + 1, clips.size());
  }
  set_time(sequence, "duration", rate.frames(position));
  output.copy_referred_resources();
  output.write(to);
  return report_assumptions(templates, clips);
}

}  // namespace quillory
