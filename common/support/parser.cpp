#include "support/parser.h"

#include <limits>
#include <utility>

namespace {

constexpr std::size_t kLongestText = std::numeric_limits<std::uint32_t>::max();

// Behind the last byte stands the NUL byte of the string, which is none of those that are escaped.
bool IsEscape(const std::string& text, std::size_t index) {
  return text[index] == '\\' && (text[index + 1] == ',' || text[index + 1] == '\\');
}

}  // namespace

Parser::Parser(std::string source) : text(std::move(source)), pos(0), current(-1) {
  if (text.size() > kLongestText) text.resize(kLongestText);
  advance();
}

void Parser::advance() { current = pos < text.size() ? static_cast<signed char>(text[pos++]) : -1; }

int Parser::parse_comma_escaped_string(std::string& out) {
  out.clear();
  const bool atEnd = current == -1 && pos >= text.size();
  if (atEnd || current == ',') return 0;

  // The bytes decide from here on, not `current`, for which 0xFF is the end.
  std::size_t index = pos - 1;
  while (index < text.size() && text[index] != ',') {
    if (IsEscape(text, index)) ++index;
    out += text[index++];
  }
  pos = static_cast<std::uint32_t>(index);
  advance();
  return 1;
}
