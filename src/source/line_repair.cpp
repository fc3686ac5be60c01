#include "source/line_repair.h"

#include <array>

namespace quillory {
namespace {

// Accepted byte range for each position of a sequence, indexed by the first byte's class.
struct Range {
  unsigned char low;
  unsigned char high;
};

struct SequenceRule {
  std::size_t length = 0;  // 0: the first byte starts no accepted sequence
  std::array<Range, 3> rest{};
};

constexpr Range kContinuation{0x80, 0xBF};

constexpr std::array<SequenceRule, 256> make_rules() {
  std::array<SequenceRule, 256> rules{};
  for (int b = 0x20; b <= 0x7E; ++b) rules[b] = {1, {}};
  rules[0x09] = rules[0x0A] = rules[0x0D] = {1, {}};
  for (int b = 0xC2; b <= 0xDF; ++b) rules[b] = {2, {kContinuation}};
  rules[0xE0] = {3, {Range{0xA0, 0xBF}, kContinuation}};
  for (int b = 0xE1; b <= 0xEC; ++b) rules[b] = {3, {kContinuation, kContinuation}};
  rules[0xED] = {3, {Range{0x80, 0x9F}, kContinuation}};
  rules[0xEE] = rules[0xEF] = {3, {kContinuation, kContinuation}};
  rules[0xF0] = {4, {Range{0x90, 0xBF}, kContinuation, kContinuation}};
  for (int b = 0xF1; b <= 0xF3; ++b) rules[b] = {4, {kContinuation, kContinuation, kContinuation}};
  rules[0xF4] = {4, {Range{0x80, 0x8F}, kContinuation, kContinuation}};
  return rules;
}

constexpr std::array<SequenceRule, 256> kRules = make_rules();

// Length of the accepted sequence at the start of `text`, or 0 when none starts there.
std::size_t accepted_sequence_length(std::string_view text) {
  const SequenceRule& rule = kRules[static_cast<unsigned char>(text[0])];
  if (rule.length == 0 || rule.length > text.size()) return 0;
  for (std::size_t i = 1; i < rule.length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < rule.rest[i - 1].low || byte > rule.rest[i - 1].high) return 0;
  }
  return rule.length;
}

}  // namespace

std::size_t repair_unit_length(unsigned char first_byte) {
  if (first_byte < 0xC0) return 1;
  if (first_byte < 0xE0) return 2;
  if (first_byte < 0xF0) return 3;
  if (first_byte < 0xF8) return 4;
  if (first_byte < 0xFC) return 5;
  if (first_byte < 0xFE) return 6;
  return 1;
}

bool is_valid_utf8_unit(std::string_view unit) {
  while (!unit.empty()) {
    const std::size_t length = accepted_sequence_length(unit);
    if (length == 0) return false;
    unit.remove_prefix(length);
  }
  return true;
}

std::string repair_line(std::string_view line) {
  std::string output;
  output.reserve(line.size());
  std::size_t pos = 0;
  while (pos < line.size()) {
    const std::size_t length = repair_unit_length(static_cast<unsigned char>(line[pos]));
    if (pos + length > line.size()) break;  // incomplete last unit
    const std::string_view unit = line.substr(pos, length);
    if (is_valid_utf8_unit(unit)) output.append(unit);
    pos += length;
  }
  return output;
}

std::vector<std::string> split_lines(std::string_view bytes) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start <= bytes.size()) {
    const std::size_t end = bytes.find('\n', start);
    if (end == std::string_view::npos) {
      lines.emplace_back(bytes.substr(start));
      break;
    }
    lines.emplace_back(bytes.substr(start, end - start));
    start = end + 1;
  }
  while (!lines.empty() && lines.back().empty()) lines.pop_back();
  return lines;
}

std::string join_lines(const std::vector<std::string>& lines) {
  std::size_t size = 0;
  for (const auto& line : lines) size += line.size();
  std::string joined;
  joined.reserve(size);
  for (const auto& line : lines) joined += line;
  return joined;
}

}  // namespace quillory
