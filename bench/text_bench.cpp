#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <list>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#ifdef BENCH_HAS_ABSL
#include <absl/strings/str_replace.h>
#include <absl/strings/str_split.h>
#endif

#ifdef BENCH_HAS_EVENT
#include <event2/buffer.h>
#endif

#include "bench.h"
#include "gxclient_util.h"

using namespace std::string_literals;

namespace {

std::string Repeat(const std::string& piece, std::size_t size) {
  std::string text;
  while (text.size() < size) text += piece;
  return text;
}

std::vector<std::string> Chunks(const std::string& text, std::size_t size) {
  std::vector<std::string> chunks;
  for (std::size_t start = 0; start < text.size(); start += size) {
    chunks.push_back(text.substr(start, size));
  }
  return chunks;
}

// StringLines for tails without line ends: what one would write at the place of the call.
std::vector<std::string> LinesByHand(const char* chunk, std::string* tail) {
  std::vector<std::string> lines;
  const char* const stop = chunk + std::strlen(chunk);
  while (const void* found = std::memchr(chunk, '\n', static_cast<std::size_t>(stop - chunk))) {
    const char* end = static_cast<const char*>(found);
    tail->append(chunk, end);
    chunk = end + 1;
    if (!tail->empty() && tail->back() == '\r') tail->pop_back();
    lines.push_back(std::move(*tail));
    tail->clear();
  }
  tail->append(chunk, stop);
  return lines;
}

// The same with each line made where it stands in the chunk.
std::vector<std::string> LinesInPlace(const char* chunk, std::string* tail) {
  std::vector<std::string> lines;
  const char* const stop = chunk + std::strlen(chunk);
  while (const void* found = std::memchr(chunk, '\n', static_cast<std::size_t>(stop - chunk))) {
    const char* end = static_cast<const char*>(found);
    if (lines.empty()) {
      tail->append(chunk, end);
      if (!tail->empty() && tail->back() == '\r') tail->pop_back();
      lines.push_back(std::move(*tail));
    } else {
      lines.emplace_back(chunk, end != chunk && end[-1] == '\r' ? end - 1 : end);
    }
    chunk = end + 1;
  }
  if (lines.empty()) {
    tail->append(chunk, stop);
  } else {
    tail->assign(chunk, stop);
  }
  return lines;
}

using Liner = std::vector<std::string> (*)(const char*, std::string*);

void FeedLines(const std::vector<std::string>& chunks, Liner liner) {
  std::string tail;
  for (const std::string& chunk : chunks) {
    benchmark::DoNotOptimize(liner(chunk.c_str(), &tail));
  }
}

#ifdef BENCH_HAS_EVENT
void FeedEventBuffer(const std::vector<std::string>& chunks) {
  evbuffer* buffer = evbuffer_new();
  for (const std::string& chunk : chunks) {
    evbuffer_add(buffer, chunk.data(), chunk.size());
    std::vector<std::string> lines;
    std::size_t size = 0;
    while (char* line = evbuffer_readln(buffer, &size, EVBUFFER_EOL_CRLF)) {
      lines.emplace_back(line, size);
      std::free(line);
    }
    benchmark::DoNotOptimize(lines);
  }
  evbuffer_free(buffer);
}
#endif

std::vector<std::string> SplitByHand(const std::string& text, char separator) {
  std::vector<std::string> fields;
  fields.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), separator)) + 1);
  const char* start = text.data();
  const char* const stop = start + text.size();
  for (const char* end = start; end != stop; ++end) {
    if (*end != separator) continue;
    fields.emplace_back(start, end);
    start = end + 1;
  }
  fields.emplace_back(start, stop);
  return fields;
}

std::string ReplaceByHand(std::string& text, const char* pattern, const char* replacement) {
  const std::size_t size = std::strlen(pattern);
  std::string result;
  std::size_t start = 0;
  std::size_t found = 0;
  while ((found = text.find(pattern, start, size)) != std::string::npos) {
    result.append(text, start, found - start).append(replacement);
    start = found + size;
  }
  result.append(text, start);
  text = result;
  return result;
}

// For texts with few hits: what follows each one is moved.
std::string ReplaceWithin(std::string& text, const char* pattern, const char* replacement) {
  const std::size_t size = std::strlen(pattern);
  const std::size_t inserted = std::strlen(replacement);
  for (std::size_t at = 0; (at = text.find(pattern, at, size)) != std::string::npos;) {
    text.replace(at, size, replacement, inserted);
    at += inserted;
  }
  return text;
}

// DecodeStringList() for texts that need no log line, byte by byte.
bool DecodeByHand(const std::string& text, std::list<std::string>* output, char separator) {
  const char* const blanks = " \f\n\r\t\v";
  std::string element;
  const auto take = [&] {
    const std::size_t first = element.find_first_not_of(blanks);
    const std::size_t last = element.find_last_not_of(blanks);
    output->push_back(first == std::string::npos ? "" : element.substr(first, last - first + 1));
    element.clear();
  };
  output->clear();
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == separator) {
      take();
      continue;
    }
    if (text[i] == '\\' && ++i == text.size()) return false;
    element += text[i];
  }
  take();
  return true;
}

// Component by component; both have the same number of them.
int CompareByHand(const char* first, const char* second) {
  for (;;) {
    const std::size_t ours = std::strcspn(first, ".");
    const std::size_t theirs = std::strcspn(second, ".");
    const int order = std::memcmp(first, second, std::min(ours, theirs));
    if (order != 0) return order;
    if (ours != theirs) return ours < theirs ? -1 : 1;
    if (first[ours] == '\0') return 0;
    first += ours + 1;
    second += theirs + 1;
  }
}

// With a table of its own for the lower-case letters.
int CompareDigits(const char* first, const char* second) {
  static const std::vector<unsigned char> lower = [] {
    std::vector<unsigned char> table(256);
    for (int c = 0; c < 256; ++c)
      table[static_cast<unsigned char>(c)] = static_cast<unsigned char>(std::tolower(c));
    return table;
  }();
  const std::size_t size = std::strlen(first);
  if (size != std::strlen(second)) return size < std::strlen(second) ? -1 : 1;
  for (std::size_t i = 0; i < size; ++i) {
    const int ours = lower[static_cast<unsigned char>(first[i])];
    const int theirs = lower[static_cast<unsigned char>(second[i])];
    if (ours != theirs) return ours < theirs ? -1 : 1;
  }
  return 0;
}

void AddSplitRows() {
#ifdef BENCH_HAS_ABSL
  const std::string eight =
      "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin:/opt/x:/y";
  const std::string large = Repeat("a field of text,", 1 << 20);
  for (const auto& [name, text, separator] :
       {std::tuple("8 fields", eight, ':'), std::tuple("1 MiB", large, ',')}) {
    bench::Row("SplitString, "s + name, [text = text, separator = separator] {
      benchmark::DoNotOptimize(GXUtils::SplitString(text, separator));
    }).Against("Abseil StrSplit", 1.10, [text = text, separator = separator] {
      std::vector<std::string> fields = absl::StrSplit(text, separator);
      benchmark::DoNotOptimize(fields);
    });
  }
#endif
  const std::string bytes = Repeat("x,", 1 << 20);
  bench::Row("SplitString, 1 MiB, fields of 1 byte", [bytes] {
    benchmark::DoNotOptimize(GXUtils::SplitString(bytes, ','));
  }).Against("hand loop", 1.05, [bytes] {
    benchmark::DoNotOptimize(SplitByHand(std::string(bytes), ','));
  });
}

void AddReplaceRows() {
  const auto add = [](const std::string& name, const std::string& text, const char* pattern,
                      const char* replacement, auto baseline, double target) {
    bench::Row("ReplaceInString, " + name, [=] {
      std::string copy = text;
      benchmark::DoNotOptimize(GXUtils::ReplaceInString(copy, pattern, replacement));
    }).Against("hand loop", target, [=] {
      std::string copy = text;
      benchmark::DoNotOptimize(baseline(copy, pattern, replacement));
    });
  };
  const std::string line = std::string(30, 'x') + "ab" + std::string(32, 'y');
  add("64 bytes, one hit, shorter", line, "ab", "c", ReplaceWithin, 1.15);
  add("64 bytes, one hit, longer", line, "ab", "cde", ReplaceWithin, 1.15);
  add("256 KiB, a hit each 16 bytes, longer", Repeat(std::string(14, 'x') + "ab", 256 << 10), "ab",
      "cde", ReplaceByHand, 1.05);
#ifdef BENCH_HAS_ABSL
  const std::string text = Repeat(std::string(78, 'x') + "\r\n", 1 << 20);
  bench::Row("ReplaceInString, 1 MiB", [text] {
    std::string copy = text;
    benchmark::DoNotOptimize(GXUtils::ReplaceInString(copy, "\r\n", "\n"));
  }).Against("Abseil StrReplaceAll", 0.75, [text] {
    const std::string copy = text;
    benchmark::DoNotOptimize(absl::StrReplaceAll(copy, {{"\r\n", "\n"}}));
  });
#endif
  // Not quadratic: ten times the text costs ten times the time.
  const std::string small(100000, 'a');
  const std::string large(1000000, 'a');
  bench::Row("ReplaceInString, a to bb, 1 MB", [large] {
    std::string copy = large;
    benchmark::DoNotOptimize(GXUtils::ReplaceInString(copy, "a", "bb"));
  }).Against("itself with 0.1 MB", 15, [small] {
    std::string copy = small;
    benchmark::DoNotOptimize(GXUtils::ReplaceInString(copy, "a", "bb"));
  });
}

void AddLineRows() {
  const auto chunks = Chunks(Repeat(std::string(79, 'x') + "\n", 16 << 20), 255);
  const bench::Row row("StringLines, 16 MiB in 255-byte chunks",
                       [chunks] { FeedLines(chunks, GXUtils::StringLines); });
  row.Against("hand loop", 1.10, [chunks] { FeedLines(chunks, LinesByHand); });
  row.Against("hand loop, in place", 1.30, [chunks] { FeedLines(chunks, LinesInPlace); });
#ifdef BENCH_HAS_EVENT
  row.Against("libevent", 0.60, [chunks] { FeedEventBuffer(chunks); });
#endif
}

void AddListRows() {
  for (const auto& [name, size, count] :
       {std::tuple("10 elements of 16", 16, 10), std::tuple("1000 elements of 16", 16, 1000),
        std::tuple("65536 elements of 16", 16, 65536), std::tuple("16 of 64 KiB", 65536, 16)}) {
    const std::list<std::string> elements(static_cast<std::size_t>(count),
                                          std::string(static_cast<std::size_t>(size), 'e'));
    const std::string text = GXUtils::EncodeStringList(elements, ',');
    bench::Row("EncodeStringList, "s + name, [elements] {
      benchmark::DoNotOptimize(GXUtils::EncodeStringList(elements, ','));
    }).Against("plain appending", size == 16 ? 1.4 : 2.0, [elements] {
      std::size_t total = 0;
      for (const std::string& element : elements) total += element.size() + 2;
      std::string plain;
      plain.reserve(total);
      for (const std::string& element : elements) plain.append(element).append(", ");
      benchmark::DoNotOptimize(plain);
    });
    const bench::Row decode("DecodeStringList, "s + name, [text] {
      std::list<std::string> output;
      GXUtils::DecodeStringList(text, &output, ',');
      benchmark::DoNotOptimize(output);
    });
    decode.Against("hand loop", 1.10, [text] {
      std::list<std::string> output;
      DecodeByHand(text, &output, ',');
      benchmark::DoNotOptimize(output);
    });
    decode.Against("copying the list", 1.7, [elements] {
      std::list<std::string> output = elements;
      benchmark::DoNotOptimize(output);
    });
  }
}

void AddComparisonRows() {
  const auto add = [](const std::string& name, auto subject, const std::string& baseline,
                      double target, auto body, const std::string& first,
                      const std::string& second) {
    bench::Row(name, [=] {
      benchmark::DoNotOptimize(subject(first.c_str(), second.c_str()));
    }).Against(baseline, target, [=] {
      benchmark::DoNotOptimize(body(first.c_str(), second.c_str()));
    });
  };
  add("CompareVersions, 4 components", GXUtils::CompareVersions, "walk", 1.5, CompareByHand,
      "10.20.30.40", "10.20.30.41");
  const std::string digits = Repeat("1f3a5b7c9d0e2f4a", 64);
  std::string capitals = digits;
  for (char& c : capitals) c = static_cast<char>(std::toupper(c));
  add("CompareHexStrings, 64 digits", GXUtils::CompareHexStrings, "loop over a table", 3,
      CompareDigits, digits, digits);
  add("CompareHexStrings, 64 digits of either case", GXUtils::CompareHexStrings,
      "loop over a table", 3, CompareDigits, digits, capitals);
}

}  // namespace

void bench::AddTextRows() {
  AddSplitRows();
  AddReplaceRows();
  AddLineRows();
  AddListRows();
  AddComparisonRows();
}
