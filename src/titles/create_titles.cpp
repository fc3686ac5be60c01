#include "titles/create_titles.h"

#include "titles/create_fcp_xml.h"
#include "titles/fcpxml_titles_over_project.h"
#include "titles/fcpxml_writer.h"
#include "titles/titles_over_sequence.h"

namespace quillory {

AssumptionReport create_titles(const OpenedSource& source, const TitleSettings& settings,
                               const Destination& to, LineSink& out) {
  if (source.format == SourceFormat::Fcpxml) {
    if (source.sequence != nullptr) {
      return create_fcpxml_over_project(source.templates, source.clips, settings, source.sequence,
                                        to, out);
    }
    return create_fcpxml(source.templates, source.clips, settings, source.document.get(), to, out);
  }
  if (source.sequence != nullptr) {
    return create_titles_over_sequence(source.templates, source.clips, source.sequence, settings,
                                       to, out);
  }
  return create_fcp_xml(source.templates, source.clips, settings, to, out, source.clip_rates);
}

}  // namespace quillory
