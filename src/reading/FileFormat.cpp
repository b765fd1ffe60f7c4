#include "reading/FileFormat.h"

#include <algorithm>

#include "image/Address.h"

namespace kestrum {

namespace {

// A text format is recognised by its first byte and a line end close enough
// behind it to be a record's: the longest sound S record has 514
// characters, the longest HEX record 521 plus its CR LF.
struct ContentRule {
  char firstByte;
  std::size_t span;
  ObjectFormat format;
};
constexpr ContentRule kContentRules[] = {
    {'S', 514, ObjectFormat::S},
    {':', 523, ObjectFormat::HEX},
};

}  // namespace

std::string ExtensionOf(std::string_view bareName) {
  const auto dot = bareName.find('.');
  if (dot == std::string_view::npos) return {};
  return std::string(bareName.substr(dot + 1));
}

bool FormatByExtension(std::string_view extension, ObjectFormat& format) {
  const auto named = FromName<ObjectFormat>(extension);
  if (named) format = *named;
  return named.has_value();
}

namespace {

// The format that a first byte and a line end close behind it give.
ObjectFormat FormatByContent(std::string_view head) {
  if (head.empty()) return ObjectFormat::BIN;
  for (const ContentRule& rule : kContentRules) {
    if (head.front() != rule.firstByte) continue;
    const std::string_view probe = head.substr(0, std::min(head.size(), rule.span));
    return probe.find_first_of("\r\n") != std::string_view::npos ? rule.format : ObjectFormat::BIN;
  }
  return ObjectFormat::BIN;
}

// A record start that no file of the other text format has in front: a
// colon, or an S and a digit.
bool PlainlyStarts(std::string_view head, ObjectFormat format) {
  if (format == ObjectFormat::HEX) return !head.empty() && head[0] == ':';
  return head.size() >= 2 && head[0] == 'S' && head[1] >= '0' && head[1] <= '9';
}

}  // namespace

FormatDecision DecideFormat(std::string_view extension, std::string_view head, ReadingMode mode) {
  if (mode == ReadingMode::Tolerant)
    head.remove_prefix(std::min(head.find_first_not_of(" \t\r\n"), head.size()));
  FormatDecision decision;
  if (FormatByExtension(extension, decision.format)) {
    if (mode == ReadingMode::Window || decision.format == ObjectFormat::BIN) return decision;
    const ObjectFormat other = decision.format == ObjectFormat::HEX ? ObjectFormat::S : ObjectFormat::HEX;
    if (PlainlyStarts(head, other)) decision = {other, FormatBasis::ContentOverExtension};
    return decision;
  }
  return {FormatByContent(head), FormatBasis::Content};
}

}  // namespace kestrum
