#include "source/fcpxml_resources.h"

#include <algorithm>
#include <filesystem>

#include "source/fcpxml_time.h"
#include "xml/xml_nodes.h"
#include "xml/xml_text.h"

namespace quillory {

std::string fcpxml_version(const xmlNode* root) {
  return xml::attribute(root, "version").value_or("");
}

bool fcpxml_version_read(std::string_view version) {
  return std::ranges::find(k_fcpxml_versions, version) != std::end(k_fcpxml_versions);
}

std::string fcpxml_document_path(const std::string& path) {
  std::filesystem::path folder(path);
  if (!folder.has_filename()) folder = folder.parent_path();  // "dailies.fcpxmld/"
  if (folder.extension() != ".fcpxmld") return path;
  std::error_code ignored;
  if (!std::filesystem::is_directory(folder, ignored)) return path;
  return (folder / "Info.fcpxml").string();
}

FcpxmlResources::FcpxmlResources(const xmlNode* root) {
  const xmlNode* resources = xml::first_child_element(root, "resources");
  if (resources == nullptr) return;
  resources_ = resources;
  for (const xmlNode* child = resources->children; child != nullptr; child = child->next) {
    if (child->type != XML_ELEMENT_NODE) continue;
    if (std::optional<std::string> id = xml::attribute(child, "id")) by_id_.try_emplace(*id, child);
  }
}

const xmlNode* FcpxmlResources::find(std::string_view id) const {
  const auto found = by_id_.find(std::string(id));
  return found == by_id_.end() ? nullptr : found->second;
}

const xmlNode* FcpxmlResources::find(std::string_view id, const char* element) const {
  const xmlNode* resource = find(id);
  return xml::is_element(resource, element) ? resource : nullptr;
}

const xmlNode* FcpxmlResources::find_effect_by_uid(std::string_view uid) const {
  if (resources_ == nullptr) return nullptr;
  for (const xmlNode* effect : xml::elements_at(resources_, {"effect"})) {
    if (xml::attribute(effect, "uid") == uid) return effect;
  }
  return nullptr;
}

std::optional<RationalTime> FcpxmlResources::frame_duration(std::string_view format_id) const {
  const std::optional<std::string> text =
      xml::attribute(find(format_id, "format"), "frameDuration");
  if (!text) return std::nullopt;
  const std::optional<RationalTime> duration = read_fcpxml_time(*text);
  if (!duration || duration->value() <= 0) return std::nullopt;
  return duration;
}

std::optional<RateRecord> find_frame_rate_by_duration(const RationalTime& frame_duration) {
  for (const RateRecord& row : FRAME_RATES) {
    if (row.frame_rate().frames(1) == frame_duration) return row;
  }
  return std::nullopt;
}

std::string asset_media_url(const xmlNode* asset) {
  if (asset == nullptr) return {};
  const xmlNode* chosen = nullptr;
  for (xmlNode* rep : xml::elements_at(asset, {"media-rep"})) {
    if (chosen == nullptr) chosen = rep;
    if (xml::attribute(rep, "kind") == "original-media") {
      chosen = rep;
      break;
    }
  }
  return xml::attribute(chosen != nullptr ? chosen : asset, "src").value_or("");
}

std::string asset_media_file_name(const xmlNode* asset) {
  const std::string src = asset_media_url(asset);
  const std::size_t last = src.find_last_of('/');
  const std::string written = last == std::string::npos ? src : src.substr(last + 1);
  // A name whose escapes stand for what XML may not hold ("%19") is shown as written.
  std::string decoded = xml::uri_unescaped(written);
  return xml::why_not_xml_text(decoded) ? written : decoded;
}

bool asset_has_video(const xmlNode* asset) {
  return xml::attribute(asset, "hasVideo") == "1";
}

}  // namespace quillory
