#include "titles/title_prototype.h"

#include <array>
#include <new>

#include "titles/node_copies.h"
#include "xml/failure.h"
#include "xml/xml_nodes.h"

namespace quillory {
namespace {

constexpr const char* kTitleName = "Quillory Card";
constexpr std::array<const char*, 5> kTitleTiming{"name", "duration", "out", "start", "end"};

}  // namespace

TitlePrototype::TitlePrototype(const TitleTemplate& chosen, xmlDoc* output, bool tolerant)
    : template_(chosen),
      copy_(xmlNewDocNode(output, nullptr, BAD_CAST "titles", nullptr)) {
  if (!copy_) throw std::bad_alloc();
  append_copy(copy_.get(), template_.xml);
  remove_formatting_blanks(copy_.get());
  xmlNode* title = generator();
  if (!tolerant || title == nullptr) return;
  for (const char* name : kTitleTiming) {
    if (xml::first_child_element(title, name) != nullptr) continue;
    xmlNewChild(title, nullptr, BAD_CAST name, nullptr);
    completed_ += (completed_.empty() ? "<" : "/<") + std::string(name) + ">";
  }
  if (!completed_.empty()) {
    completed_ = "title template \"" + template_.name + "\" has no " + completed_ + ", added";
  }
}

xmlNode* TitlePrototype::generator() const {
  xmlNode* last = copy_->last;
  while (last != nullptr && last->type != XML_ELEMENT_NODE) last = last->prev;
  return last != nullptr && xmlStrEqual(last->name, BAD_CAST "generatoritem") ? last : nullptr;
}

std::string TitlePrototype::owner(const std::string& clip) const {
  return "the title template \"" + template_.name + "\" (for " + clip + ")";
}

std::optional<std::size_t> TitlePrototype::text_value() const {
  if (template_.type == "Text") return 0;
  if (template_.type == "Outline Text") return 1;
  return std::nullopt;
}

void TitlePrototype::check(const std::string& clip) const {
  xmlNode* title = generator();
  if (title == nullptr) fail(owner(clip) + " holds no <generatoritem>");
  for (const char* name : kTitleTiming) {
    if (xml::first_child_element(title, name) == nullptr) {
      throw IncompleteInput("quillory: " + owner(clip) + " has no <" + name + ">");
    }
  }
  const auto value = text_value();
  const std::size_t values = xml::elements_at(title, {"effect", "parameter", "value"}).size();
  if (value && values <= *value) {
    fail(owner(clip) + " has " + std::to_string(values) +
         " effect/parameter/value elements; a \"" + template_.type + "\" title needs " +
         std::to_string(*value + 1));
  }
}

std::vector<xml::Node> TitlePrototype::make(const std::string& start, const std::string& end,
                                            const std::string& length,
                                            const std::string& text) const {
  std::vector<xml::Node> nodes;
  for (const xmlNode* node = copy_->children; node != nullptr; node = node->next) {
    nodes.push_back(clean_copy(node, copy_->doc));
  }
  auto last = nodes.rbegin();
  while (last->get()->type != XML_ELEMENT_NODE) ++last;
  xmlNode* title = last->get();
  remove_link_indexes(title);
  xml::set_text(xml::first_child_element(title, "name"), kTitleName);
  xml::set_text(xml::first_child_element(title, "duration"), length);
  xml::set_text(xml::first_child_element(title, "out"), length);
  xml::set_text(xml::first_child_element(title, "start"), start);
  xml::set_text(xml::first_child_element(title, "end"), end);
  if (const auto value = text_value()) {
    xml::set_text(xml::elements_at(title, {"effect", "parameter", "value"})[*value], text);
  }
  return nodes;
}

}  // namespace quillory
