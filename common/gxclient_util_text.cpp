#include "gxclient_util.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <functional>
#include <iterator>
#include <numeric>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "support/logfile.h"

// The assertion below stays alive in every build type.
#undef NDEBUG
#include <cassert>

namespace GXUtils {
namespace {

// The number of bytes that `matches` is true for. Every thirty-second byte has a counter of its own,
// which vectorises with g++ and clang++, -O2 and -O3: 180 bytes take 16 to 22 ns, with
// std::count_if() 75 or more. With sixteen counters clang++ 14 -O3 does not. One sum as wide as a byte
// is as fast, but g++ 12 -O3 miscounts it in blocks of 8 and 16.
template <class Matches>
std::size_t CountIf(std::string_view text, Matches matches) {
  constexpr std::size_t kCounters = 32;
  constexpr std::size_t kMostRounds = 255;  // until a counter is full
  std::size_t count = 0;
  while (text.size() >= kCounters) {
    unsigned char counters[kCounters] = {};
    const std::size_t rounds = std::min(text.size() / kCounters, kMostRounds);
    for (std::size_t round = 0; round < rounds; ++round) {
      const char* bytes = text.data() + round * kCounters;
      for (std::size_t i = 0; i < kCounters; ++i) {
        counters[i] = static_cast<unsigned char>(counters[i] + (matches(bytes[i]) ? 1 : 0));
      }
    }
    count = std::accumulate(std::begin(counters), std::end(counters), count);
    text.remove_prefix(rounds * kCounters);
  }
  return count + static_cast<std::size_t>(std::count_if(text.begin(), text.end(), matches));
}

// The first `wanted` byte, or `end`. The first four are compared here: fields of one byte take a
// fifth less time so, since memchr() costs a call.
const char* FindByte(const char* start, const char* end, char wanted) {
  for (int i = 0; i < 4; ++i, ++start) {
    if (start == end || *start == wanted) return start;
  }
  const void* found = std::memchr(start, wanted, static_cast<std::size_t>(end - start));
  return found != nullptr ? static_cast<const char*>(found) : end;
}

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
constexpr ByteSet kHexLetters("ABCDEFabcdef");

// The part of `text` from its first to its last byte that is not in `set`.
std::string_view Trim(std::string_view text, const ByteSet& set) {
  while (!text.empty() && set.Has(text.back())) text.remove_suffix(1);
  while (!text.empty() && set.Has(text.front())) text.remove_prefix(1);
  return text;
}

// Finds one byte in a text, each time from the same position or a later one. However often it is
// asked, it looks at each byte of the text once.
class ForwardFinder {
 public:
  ForwardFinder(std::string_view text, char wanted) : text_(text), wanted_(wanted) { Search(0); }

  // The first position from `start` on; the size of the text when there is none.
  std::size_t From(std::size_t start) {
    if (found_ < start) Search(start);
    return found_;
  }

 private:
  void Search(std::size_t start) { found_ = std::min(text_.find(wanted_, start), text_.size()); }

  std::string_view text_;
  char wanted_;
  std::size_t found_ = 0;
};

// Finds the two bytes that mean something in the escaped list format.
class SpecialFinder {
 public:
  SpecialFinder(std::string_view text, char separator)
      : separator_(text, separator), escape_(text, '\\') {}

  std::size_t From(std::size_t start) {
    return std::min(separator_.From(start), escape_.From(start));
  }

 private:
  ForwardFinder separator_;
  ForwardFinder escape_;
};

// The bytes that the escaped list format gives a meaning.
struct IsSpecial {
  char separator;
  bool operator()(char byte) const { return byte == separator || byte == '\\'; }
};

// From this size on it pays to look for specials before an element is copied byte by byte.
constexpr std::size_t kLongElement = 64;

// Inserts the `count` escapes that the elements need into `text`, where they stand with a joiner
// behind each. Goes back from the end to the first escape: what stands before it is in its place.
void InsertEscapes(std::string& text, std::size_t count, const std::list<std::string>& elements,
                   std::size_t joinerSize, IsSpecial isSpecial) {
  const std::size_t size = text.size();
  text.resize(size + count);
  const char* in = text.data() + size;
  char* out = text.data() + text.size();
  for (auto element = elements.rbegin(); in != out; ++element) {
    for (std::size_t i = 0; i < joinerSize; ++i) *--out = *--in;
    if (element->size() >= kLongElement && CountIf(*element, isSpecial) == 0) {
      in -= element->size();
      out -= element->size();
      std::copy(element->begin(), element->end(), out);
      continue;
    }
    for (std::size_t i = element->size(); i > 0 && in != out; --i) {
      const char byte = *--in;
      *--out = byte;
      if (isSpecial(byte)) *--out = '\\';
    }
  }
}

// Adds an element to the list. `unescaped` holds its bytes up to its last escape and is emptied,
// `rest` those after it.
void AppendElement(std::list<std::string>& elements, std::string& unescaped,
                   std::string_view rest) {
  if (unescaped.empty()) {
    elements.emplace_back(Trim(rest, kWhitespace));
    return;
  }
  unescaped.append(rest);
  elements.emplace_back(Trim(unescaped, kWhitespace));
  unescaped.clear();
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

bool PointsInto(const std::string& text, const char* pointer) {
  const std::less<> before;
  return !before(pointer, text.data()) && !before(text.data() + text.size(), pointer);
}

// Replaces within the memory of the text; `found` is the first occurrence. As `inserted` is not
// longer than `wanted`, nothing is overwritten before it has been read. Neither of the two is part
// of the text.
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

// Appends the lines that `text` holds to `lines`, each without its line end. Returns what stands
// after the last one.
std::string_view CutLines(std::string_view text, std::vector<std::string>& lines) {
  for (;;) {
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) return text;
    const bool hasReturn = end > 0 && text[end - 1] == '\r';
    lines.emplace_back(text.data(), hasReturn ? end - 1 : end);
    text.remove_prefix(end + 1);
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

int LowerCase(char byte) { return std::tolower(static_cast<unsigned char>(byte)); }

// Spares tolower(), which costs more than all the rest: A to F are the capitals of a to f in every
// locale.
bool IsSameDigit(char first, char second) {
  return first == second || ((first ^ second) == ('a' ^ 'A') && kHexLetters.Has(first));
}

}  // namespace

std::vector<std::string> SplitString(std::string text, char separator) {
  const auto isSeparator = [separator](char byte) { return byte == separator; };
  std::vector<std::string> fields;
  fields.reserve(CountIf(text, isSeparator) + 1);
  const char* start = text.data();
  const char* const end = start + text.size();
  for (;;) {
    const char* next = FindByte(start, end, separator);
    fields.emplace_back(start, next);
    if (next == end) return fields;
    start = next + 1;
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
  if (PointsInto(text, pattern) || PointsInto(text, replacement)) {
    return ReplaceInString(text, std::string(wanted).c_str(), std::string(inserted).c_str());
  }
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
  std::string copy = result;
  text = std::move(result);
  return copy;
}

std::vector<std::string> StringLines(const char* chunk, std::string* tail) {
  const std::string_view added = chunk;
  std::vector<std::string> lines;
  // StringLines() leaves no line end in the tail, but the caller may have put some there.
  if (tail->find('\n') != std::string::npos) {
    const std::string joined = std::string(*tail).append(added);
    std::string rest(CutLines(joined, lines));
    tail->swap(rest);
    return lines;
  }
  const std::size_t end = added.find('\n');
  if (end == std::string_view::npos) {
    tail->append(added);
    return lines;
  }
  lines.reserve(CountIf(added, [](char byte) { return byte == '\n'; }));
  std::string& first = lines.emplace_back();
  first.reserve(tail->size() + end);
  first.append(*tail).append(added, 0, end);
  if (!first.empty() && first.back() == '\r') first.pop_back();
  // Last, since a call that throws leaves the tail as it was.
  tail->assign(CutLines(added.substr(end + 1), lines));
  return lines;
}

std::string LongToString(long value) { return std::to_string(value); }

std::string EncodeStringList(const std::list<std::string>& elements, char separator) {
  if (elements.empty()) return {};
  const bool isSpaced = separator == ',' || separator == '\0';
  const std::size_t joinerSize = isSpaced ? 2 : 1;
  std::size_t size = 0;
  for (const std::string& element : elements) size += element.size() + joinerSize;

  std::string text(size, '\0');
  char* out = text.data();  // a third faster than appending short elements
  for (const std::string& element : elements) {
    out = std::copy(element.begin(), element.end(), out);
    *out++ = separator;
    if (isSpaced) *out++ = ' ';
  }
  // Most lists need no escape. That shows sooner in the joined text than in short elements.
  const IsSpecial isSpecial{separator};
  const std::size_t escapes = CountIf(text, isSpecial) - elements.size();
  if (escapes != 0) InsertEscapes(text, escapes, elements, joinerSize, isSpecial);
  text.resize(text.size() - joinerSize);  // nothing follows the last element
  return text;
}

bool DecodeStringList(const std::string& text, std::list<std::string>* output, char separator) {
  assert(output);
  output->clear();
  if (Trim(text, kWhitespace).empty()) return true;

  const std::string_view bytes = text;
  SpecialFinder special(text, separator);
  std::string unescaped;  // the element's bytes up to its last escape
  std::size_t start = 0;
  for (std::size_t next = special.From(0); next != text.size(); next = special.From(start)) {
    if (text[next] != '\\') {
      AppendElement(*output, unescaped, bytes.substr(start, next - start));
      start = next + 1;
      continue;
    }
    if (next + 1 == text.size()) {
      logfile.Log("DecodeStringList: Trailing slash", 4);
      return false;
    }
    const char escaped = text[next + 1];
    if (escaped != '\\' && escaped != separator) {
      logfile.Log("DecodeStringList: Bad escape sequence", 4);
      return false;
    }
    unescaped.append(text, start, next - start);
    unescaped += escaped;
    start = next + 2;
  }
  AppendElement(*output, unescaped, bytes.substr(start));
  return true;
}

int CompareVersions(const char* first, const char* second) {
  if (first == nullptr || second == nullptr) throw std::logic_error("a version is null");
  for (; *first == *second; ++first, ++second) {
    if (*first == '\0') return 0;
  }
  // A missing component counts as "0"; any other one makes its version the higher.
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
  for (; *first != '\0'; ++first, ++second) {
    if (IsSameDigit(*first, *second)) continue;
    const int ours = LowerCase(*first);
    const int theirs = LowerCase(*second);
    if (ours != theirs) return ours < theirs ? -1 : 1;
  }
  return 0;
}

}  // namespace GXUtils
