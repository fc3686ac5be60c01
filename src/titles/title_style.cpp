#include "titles/title_style.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "source/fcpxml_reader.h"
#include "titles/fcpxml_title.h"
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

// FCPXML colours are four fractions, "0.8 0.8 0.8 1".
Colour fraction_colour(const std::optional<std::string>& text, Colour otherwise) {
  double red = 0, green = 0, blue = 0, alpha = 1;
  if (!text || std::sscanf(text->c_str(), "%lf %lf %lf %lf", &red, &green, &blue, &alpha) < 3) {
    return otherwise;
  }
  const auto byte = [](double fraction) { return static_cast<int>(std::lround(fraction * 255)); };
  return {byte(red), byte(green), byte(blue), byte(alpha)};
}

// An FCPXML <title>: its first text style and its Position, the offset of the text from the
// frame's centre in pixels, upwards.
TitleStyle read_fcpxml_title_style(const xmlNode* title, FrameSize frame) {
  TitleStyle style;
  const xmlNode* text_style = xml::first_element_at(title, {"text-style-def", "text-style"});
  if (const auto font = xml::attribute(text_style, "font")) style.font = *font;
  if (const auto size = xml::attribute(text_style, "fontSize")) style.size = std::strtod(size->c_str(), nullptr);
  const std::string face = xml::attribute(text_style, "fontFace").value_or("");
  style.bold = xml::attribute(text_style, "bold") == "1" || face.find("Bold") != std::string::npos;
  style.italic = xml::attribute(text_style, "italic") == "1" || face.find("Italic") != std::string::npos;
  const std::string alignment = xml::attribute(text_style, "alignment").value_or("center");
  style.alignment = alignment == "left"    ? TextAlignment::Left
                    : alignment == "right" ? TextAlignment::Right
                                           : TextAlignment::Centre;
  style.colour = fraction_colour(xml::attribute(text_style, "fontColor"), {255, 255, 255, 255});
  for (const xmlNode* param : xml::elements_at(title, {"param"})) {
    if (xml::attribute(param, "name") != "Position") continue;
    double x = 0, y = 0;
    if (std::sscanf(xml::attribute(param, "value").value_or("").c_str(), "%lf %lf", &x, &y) == 2) {
      style.origin_x = x / frame.width;
      style.origin_y = -y / frame.height;
    }
  }
  return style;
}

// The built-in FCPXML template draws as the Basic Title the writer makes for it.
TitleStyle read_basic_title_style(FrameSize frame) {
  const xml::Document doc(xmlNewDoc(BAD_CAST "1.0"));
  FcpxmlIds ids;
  const FcpxmlTitleMaker maker(fcpxml_default_template(), "r1", frame.height, ids);
  const RationalTime none(0, TimeScale(1, 1));
  const xml::Node title = maker.make(doc.get(), "", {none, none, 1});
  return read_fcpxml_title_style(title.get(), frame);
}

}  // namespace

TitleStyle read_title_style(const TitleTemplate& title, FrameSize frame) {
  if (title.type == kFcpxmlTitleType) {
    return title.xml != nullptr ? read_fcpxml_title_style(title.xml, frame)
                                : read_basic_title_style(frame);
  }
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
