#pragma once
// What --list and --preview print: what the user asked to see, on standard output.

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "media/media_folder.h"
#include "source/get_info_from_clips.h"
#include "titles/compose_title_text.h"

namespace quillory::cli {

// The templates, the clips (name, file, reel, rate) and the rates met, as indented text.
void print_listing(const OpenedSource& opened, std::ostream& out);

// The same as one JSON document, with every clip's logged facts and the path of its media on
// this machine (null where neither the source's path nor `media_folder` holds it), for
// pipelines; with `source`, the document names it first.
void print_json_listing(const OpenedSource& opened, std::ostream& out,
                        const std::optional<std::string>& source = std::nullopt,
                        const media::MediaFolder* media_folder = nullptr);

// The JSON document of a source that could not be listed: its path and why.
void print_json_failure(const std::string& source, const std::string& message, std::ostream& out);

// Every clip's title text, carriage returns shown as line breaks, titles apart by a blank line.
void print_preview(const std::vector<ClipRecord>& clips, const LineSettings& lines,
                   std::ostream& out);

}  // namespace quillory::cli
