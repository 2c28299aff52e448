#include "gxclient_util.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <strings.h>

#include "support/logfile.h"

// The assertion below stays alive in every build type.
#undef NDEBUG
#include <cassert>

namespace GXUtils {
namespace {

// A set of bytes with a look-up in constant time.
class ByteSet {
 public:
  constexpr explicit ByteSet(std::string_view members) {
    for (const char member : members) has_[static_cast<unsigned char>(member)] = true;
  }
  constexpr bool Has(char byte) const { return has_[static_cast<unsigned char>(byte)]; }

 private:
  bool has_[256] = {};
};

constexpr ByteSet kWhitespace(" \f\n\r\t\v");

// The part of `text` from its first to its last byte that is not in `set`.
std::string_view Trim(std::string_view text, const ByteSet& set) {
  while (!text.empty() && set.Has(text.back())) text.remove_suffix(1);
  while (!text.empty() && set.Has(text.front())) text.remove_prefix(1);
  return text;
}

bool IsSpecial(char byte, char separator) { return byte == separator || byte == '\\'; }

// The size of the part of an escaped list before its first separator or backslash.
std::size_t PlainSize(std::string_view text, char separator) {
  const auto isSpecial = [separator](char byte) { return IsSpecial(byte, separator); };
  return static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isSpecial) - text.begin());
}

bool Contains(std::string_view text, char byte) {
  return text.find(byte) != std::string_view::npos;
}

void AppendEscaped(std::string& text, std::string_view element, char separator) {
  // Two searches for one byte are much faster than one search for either.
  if (!Contains(element, separator) && !Contains(element, '\\')) {
    text += element;
    return;
  }
  for (;;) {
    const std::size_t size = PlainSize(element, separator);
    text += element.substr(0, size);
    if (size == element.size()) return;
    text += '\\';
    text += element[size];
    element.remove_prefix(size + 1);
  }
}

// The standard search is fast on short patterns, but compares the whole pattern at every candidate;
// memmem() stays linear with long ones.
constexpr std::size_t kShortPattern = 16;

std::size_t FindPattern(std::string_view text, std::string_view pattern, std::size_t start) {
  if (pattern.size() <= kShortPattern) return text.find(pattern, start);
  const void* found =
      memmem(text.data() + start, text.size() - start, pattern.data(), pattern.size());
  if (found == nullptr) return std::string_view::npos;
  return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

// Replaces within the memory of the text; `found` is the first occurrence. As `inserted` is not
// longer than `wanted`, nothing is overwritten before it has been read.
void ReplaceInPlace(std::string& text, std::size_t found, std::string_view wanted,
                    std::string_view inserted) {
  std::size_t end = found;  // of the result
  while (found != std::string::npos) {
    std::memcpy(&text[end], inserted.data(), inserted.size());
    end += inserted.size();
    const std::size_t start = found + wanted.size();
    found = FindPattern(text, wanted, start);
    const std::size_t kept = std::min(found, text.size()) - start;
    std::memmove(&text[end], &text[start], kept);
    end += kept;
  }
  text.resize(end);
}

// Appends the lines of `text`, each without its line end. Returns the size of the part with lines.
std::size_t CutLines(std::string_view text, std::vector<std::string>& lines) {
  std::size_t start = 0;
  for (;;) {
    const std::size_t end = text.find('\n', start);
    if (end == std::string_view::npos) return start;
    const bool hasReturn = end > start && text[end - 1] == '\r';
    lines.emplace_back(text.substr(start, end - start - (hasReturn ? 1 : 0)));
    start = end + 1;
  }
}

const char* SkipHexPrefix(const char* text) {
  if (text[0] == '0' && text[1] == 'x') text += 2;
  while (*text == '0') ++text;
  return text;
}

bool EndsComponent(char byte) { return byte == '.' || byte == '\0'; }

// Whether every component of `rest`, which is empty or begins with a full stop, is "0".
bool HasOnlyZeros(const char* rest) {
  for (; *rest != '\0'; rest += 2) {
    if (rest[1] != '0' || !EndsComponent(rest[2])) return false;
  }
  return true;
}

}  // namespace

std::vector<std::string> SplitString(std::string text, char separator) {
  std::vector<std::string> fields;
  fields.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), separator)) + 1);
  std::string_view rest = text;
  for (;;) {
    const std::size_t end = rest.find(separator);
    fields.emplace_back(rest.substr(0, end));
    if (end == std::string_view::npos) return fields;
    rest.remove_prefix(end + 1);
  }
}

std::string Strip(std::string text, std::string set) {
  const std::string_view kept = Trim(text, ByteSet(set));
  const auto start = static_cast<std::size_t>(kept.data() - text.data());
  text.resize(start + kept.size());
  text.erase(0, start);
  return text;
}

std::string ReplaceInString(std::string& text, const char* pattern, const char* replacement) {
  const std::string_view wanted = pattern;
  const std::string_view inserted = replacement;
  if (wanted.empty()) return text;
  std::size_t found = FindPattern(text, wanted, 0);
  if (found == std::string::npos) return text;
  if (inserted.size() <= wanted.size()) {
    ReplaceInPlace(text, found, wanted, inserted);
    return text;
  }

  std::string result;
  result.reserve(text.size() + inserted.size() - wanted.size());  // enough for one
  std::size_t start = 0;
  for (; found != std::string::npos; found = FindPattern(text, wanted, start)) {
    result.append(text.data() + start, found - start).append(inserted);
    start = found + wanted.size();
  }
  result.append(text, start);
  text = std::move(result);
  return text;
}

std::vector<std::string> StringLines(const char* chunk, std::string* tail) {
  // In place: a copy for each chunk takes 5 to 10 times as long for a long line.
  const std::size_t oldSize = tail->size();
  tail->append(chunk);
  std::vector<std::string> lines;
  try {
    tail->erase(0, CutLines(*tail, lines));
  } catch (...) {
    tail->resize(oldSize);  // the caller has lost nothing and may call again
    throw;
  }
  return lines;
}

std::string LongToString(long value) { return std::to_string(value); }

std::string EncodeStringList(const std::list<std::string>& elements, char separator) {
  const char spacedJoiner[] = {separator, ' '};
  const bool isSpaced = separator == ',' || separator == '\0';
  const std::string_view joiner(spacedJoiner, isSpaced ? 2 : 1);
  std::size_t size = 0;
  for (const std::string& element : elements) size += element.size() + joiner.size();

  std::string text;
  text.reserve(size);  // more only if there is something to escape
  for (const std::string& element : elements) {
    if (&element != &elements.front()) text += joiner;
    AppendEscaped(text, element, separator);
  }
  return text;
}

bool DecodeStringList(const std::string& text, std::list<std::string>* output, char separator) {
  assert(output);
  output->clear();
  if (Trim(text, kWhitespace).empty()) return true;

  std::string element;
  std::string_view rest = text;
  for (;;) {
    const std::size_t size = PlainSize(rest, separator);
    element += rest.substr(0, size);
    rest.remove_prefix(size);
    if (rest.empty()) break;
    if (rest[0] != '\\') {
      output->emplace_back(Trim(element, kWhitespace));
      element.clear();
      rest.remove_prefix(1);
      continue;
    }
    if (rest.size() == 1) {
      logfile.Log("DecodeStringList: Trailing slash", 4);
      return false;
    }
    if (!IsSpecial(rest[1], separator)) {
      logfile.Log("DecodeStringList: Bad escape sequence", 4);
      return false;
    }
    element += rest[1];
    rest.remove_prefix(2);
  }
  output->emplace_back(Trim(element, kWhitespace));
  return true;
}

int CompareVersions(const char* first, const char* second) {
  if (first == nullptr || second == nullptr) throw std::logic_error("a version is null");
  for (; *first == *second; ++first, ++second) {
    if (*first == '\0') return 0;
  }
  // A missing component counts as "0" and is lower than every other one.
  if (*first == '\0' && *second == '.') return HasOnlyZeros(second) ? 0 : -1;
  if (*second == '\0' && *first == '.') return HasOnlyZeros(first) ? 0 : 1;
  // Of two components that are equal so far, the one that ends is the lower.
  if (EndsComponent(*first)) return -1;
  if (EndsComponent(*second)) return 1;
  return static_cast<unsigned char>(*first) < static_cast<unsigned char>(*second) ? -1 : 1;
}

int CompareHexStrings(const char* first, const char* second) {
  first = SkipHexPrefix(first);
  second = SkipHexPrefix(second);
  const std::size_t firstLength = std::strlen(first);
  const std::size_t secondLength = std::strlen(second);
  if (firstLength != secondLength) return firstLength < secondLength ? -1 : 1;
  const int order = strcasecmp(first, second);  // lowers as tolower() does in the current locale
  return order < 0 ? -1 : order > 0 ? 1 : 0;
}

}  // namespace GXUtils
