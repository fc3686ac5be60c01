#include "titles/title_prototype.h"

#include <array>
#include <memory>
#include <new>
#include <string_view>

#include <libxml/xmlIO.h>

#include "titles/node_copies.h"
#include "source/incomplete_input.h"
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
    completed_ = "title template \"" + shown(template_.name) + "\" has no " + completed_ + ", added";
  }
}

xmlNode* TitlePrototype::generator() const {
  xmlNode* last = copy_->last;
  while (last != nullptr && last->type != XML_ELEMENT_NODE) last = last->prev;
  return xml::is_element(last, "generatoritem") ? last : nullptr;
}

std::string TitlePrototype::owner(const std::string& clip) const {
  return "the title template \"" + shown(template_.name) + "\" (for " + clip + ")";
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
  xmlNode* title = last_element(nodes);
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

xmlNode* TitlePrototype::last_element(const std::vector<xml::Node>& nodes) {
  for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
    if (node->get()->type == XML_ELEMENT_NODE) return node->get();
  }
  return nullptr;
}

namespace {

// Marks where a field goes in the written text. The marks cannot occur in the text libxml2
// writes for a template, whose characters outside a field are never control characters.
constexpr std::array<std::pair<std::string_view, int>, 6> kMarks{{
    {"\x1F" "start" "\x1F", 0}, {"\x1F" "end" "\x1F", 1}, {"\x1F" "length" "\x1F", 2},
    {"\x1F" "text" "\x1F", 3},  {"\x1F" "id" "\x1F", 4},  {"\x1F" "uuid" "\x1F", 5},
}};

std::string mark(int field) { return std::string(kMarks[static_cast<std::size_t>(field)].first); }

// Hands what libxml2 writes on to the end of a string.
int append_to(void* text, const char* bytes, int length) {
  static_cast<std::string*>(text)->append(bytes, static_cast<std::size_t>(length));
  return length;
}

// Appends `text` to `to` as libxml2 escapes a text node that it writes in UTF-8.
void append_escaped(std::string& to, const std::string& text) {
  const std::unique_ptr<xmlOutputBuffer, int (*)(xmlOutputBuffer*)> out(
      xmlOutputBufferCreateIO(&append_to, nullptr, &to, nullptr), &xmlOutputBufferClose);
  if (!out ||
      xmlOutputBufferWriteEscape(out.get(), reinterpret_cast<const xmlChar*>(text.c_str()),
                                 nullptr) < 0 ||
      xmlOutputBufferFlush(out.get()) < 0) {
    throw std::bad_alloc();
  }
}

}  // namespace

TitlePrototype::Text TitlePrototype::serialize(
    int level, bool own_ids, const std::function<void(xmlNode*)>& finish) const {
  std::vector<xml::Node> nodes = make(mark(0), mark(1), mark(2), mark(3));
  xmlNode* title = last_element(nodes);
  if (own_ids) {
    xmlSetProp(title, BAD_CAST "id", BAD_CAST mark(4).c_str());
    xml::set_child_text(title, "masterclipid", mark(4));
    xml::set_child_text(xml::first_child_element(title, "itemhistory"), "uuid", mark(5));
  }
  finish(title);
  std::unique_ptr<xmlOutputBuffer, int (*)(xmlOutputBuffer*)> buffer(xmlAllocOutputBuffer(nullptr),
                                                                      &xmlOutputBufferClose);
  if (!buffer) throw std::bad_alloc();
  for (const auto& node : nodes) {
    xmlOutputBufferWriteString(buffer.get(), ("\n" + std::string(2 * level, ' ')).c_str());
    xmlNodeDumpOutput(buffer.get(), copy_->doc, node.get(), level, 1, "UTF-8");
  }
  const std::string written(reinterpret_cast<const char*>(xmlOutputBufferGetContent(buffer.get())),
                            xmlOutputBufferGetSize(buffer.get()));
  // Cut the text at every mark, in the order the marks stand.
  Text text;
  std::size_t from = 0;
  while (true) {
    std::size_t nearest = std::string::npos;
    int field = -1;
    for (const auto& [token, index] : kMarks) {
      const std::size_t at = written.find(token, from);
      if (at < nearest) {
        nearest = at;
        field = index;
      }
    }
    text.pieces_.push_back(written.substr(from, nearest - from));
    if (nearest == std::string::npos) break;
    text.fields_.push_back(static_cast<Text::Field>(field));
    from = nearest + kMarks[static_cast<std::size_t>(field)].first.size();
  }
  return text;
}

std::string TitlePrototype::Text::join(const Fields& fields) const {
  std::string text = pieces_.front();
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    switch (fields_[i]) {
      case Field::Start: text += fields.start; break;
      case Field::End: text += fields.end; break;
      case Field::Length: text += fields.length; break;
      case Field::Text: append_escaped(text, fields.text); break;
      case Field::Id: text += fields.id; break;
      case Field::Uuid: text += fields.uuid; break;
    }
    text += pieces_[i + 1];
  }
  return text;
}

const TitleTemplate& choose_template(const std::vector<TitleTemplate>& templates,
                                     const std::optional<std::string>& name) {
  if (templates.empty()) {
    fail("no source document is open: open an xmeml export before creating titles");
  }
  if (name) {
    for (const auto& candidate : templates) {
      if (candidate.name == *name) return candidate;
    }
  }
  return templates.front();
}

}  // namespace quillory
