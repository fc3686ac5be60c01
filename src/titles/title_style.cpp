#include "titles/title_style.h"

#include <cstdlib>
#include <optional>

#include "xml/xml_nodes.h"

namespace quillory {
namespace {

// The generator item's effect parameter `id`'s <value>; none when it has none.
const xmlNode* parameter_value(const xmlNode* generator, const char* id) {
  for (const xmlNode* parameter : xml::elements_at(generator, {"effect", "parameter"})) {
    const std::string name = xml::text_content(xml::first_child_element(parameter, "parameterid"));
    if (name == id) return xml::first_child_element(parameter, "value");
  }
  return nullptr;
}

std::optional<double> number(const xmlNode* value) {
  if (value == nullptr) return std::nullopt;
  const std::string text = xml::text_content(value);
  char* end = nullptr;
  const double read = std::strtod(text.c_str(), &end);
  if (end == text.c_str()) return std::nullopt;
  return read;
}

double child_number(const xmlNode* value, const char* name, double otherwise) {
  return value != nullptr ? number(xml::first_child_element(value, name)).value_or(otherwise)
                          : otherwise;
}

Colour colour(const xmlNode* value, Colour otherwise) {
  if (value == nullptr) return otherwise;
  return {static_cast<int>(child_number(value, "red", otherwise.red)),
          static_cast<int>(child_number(value, "green", otherwise.green)),
          static_cast<int>(child_number(value, "blue", otherwise.blue)),
          static_cast<int>(child_number(value, "alpha", otherwise.alpha))};
}

// The generator item of a template: a document's own <generatoritem>, or the first one in the
// built-in template's fragment.
const xmlNode* generator_of(const TitleTemplate& title) {
  if (title.xml == nullptr) return nullptr;
  if (xml::is_element(title.xml, "generatoritem")) return title.xml;
  for (const xmlNode* node = title.xml; node != nullptr; node = node->next) {
    if (xml::is_element(node, "generatoritem")) return node;
    if (const xmlNode* inside = xml::first_descendant(node, "generatoritem")) return inside;
  }
  return nullptr;
}

}  // namespace

TitleStyle read_title_style(const TitleTemplate& title) {
  TitleStyle style;
  const xmlNode* generator = generator_of(title);
  if (generator == nullptr) return style;
  for (const char* id : {"fontname", "font"}) {
    if (const xmlNode* value = parameter_value(generator, id)) style.font = xml::text_content(value);
  }
  style.size = number(parameter_value(generator, "fontsize")).value_or(style.size);
  const int font_style = static_cast<int>(number(parameter_value(generator, "fontstyle")).value_or(1));
  style.bold = font_style == 2 || font_style == 4;
  style.italic = font_style == 3 || font_style == 4;
  switch (static_cast<int>(number(parameter_value(generator, "fontalign")).value_or(2))) {
    case 1: style.alignment = TextAlignment::Left; break;
    case 3: style.alignment = TextAlignment::Right; break;
    default: style.alignment = TextAlignment::Centre; break;
  }
  style.colour = colour(parameter_value(generator, "fontcolor"), style.colour);
  const xmlNode* origin = parameter_value(generator, "origin");
  style.origin_x = child_number(origin, "horiz", 0);
  style.origin_y = child_number(origin, "vert", 0);
  style.leading = number(parameter_value(generator, "leading")).value_or(0);
  style.outline_width = number(parameter_value(generator, "linewidth")).value_or(0);
  style.outline_colour = colour(parameter_value(generator, "linecolor"), style.outline_colour);
  return style;
}

}  // namespace quillory
