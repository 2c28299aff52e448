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
std::vector<std::string> LinesByHand(const char* chunk, std::string* pending) {
  std::vector<std::string> lines;
  while (const char* end = std::strchr(chunk, '\n')) {
    pending->append(chunk, end);
    if (!pending->empty() && pending->back() == '\r') pending->pop_back();
    lines.push_back(std::move(*pending));
    pending->clear();
    chunk = end + 1;
  }
  pending->append(chunk);
  return lines;
}

using Liner = std::vector<std::string> (*)(const char*, std::string*);

void FeedLines(const std::vector<std::string>& chunks, Liner liner) {
  std::string pending;
  for (const std::string& chunk : chunks) {
    benchmark::DoNotOptimize(liner(chunk.c_str(), &pending));
  }
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
}

void AddReplaceRows() {
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
  bench::Row("StringLines, 16 MiB in 255-byte chunks", [chunks] {
    FeedLines(chunks, GXUtils::StringLines);
  }).Against("hand loop", 1.10, [chunks] { FeedLines(chunks, LinesByHand); });
}

void AddListRows() {
  for (const auto& [name, size, count] :
       {std::tuple("1000 elements of 16", 16, 1000), std::tuple("16 of 64 KiB", 65536, 16)}) {
    const std::list<std::string> elements(static_cast<std::size_t>(count),
                                          std::string(static_cast<std::size_t>(size), 'e'));
    const std::string text = GXUtils::EncodeStringList(elements, ',');
    bench::Row("EncodeStringList, "s + name, [elements] {
      benchmark::DoNotOptimize(GXUtils::EncodeStringList(elements, ','));
    }).Against("plain appending", 2.0, [elements] {
      std::size_t total = 0;
      for (const std::string& element : elements) total += element.size() + 2;
      std::string plain;
      plain.reserve(total);
      for (const std::string& element : elements) plain.append(element).append(", ");
      benchmark::DoNotOptimize(plain);
    });
    bench::Row("DecodeStringList, "s + name, [text] {
      std::list<std::string> output;
      GXUtils::DecodeStringList(text, &output, ',');
      benchmark::DoNotOptimize(output);
    }).Against("copying the list", 1.7, [elements] {
      std::list<std::string> output = elements;
      benchmark::DoNotOptimize(output);
    });
  }
}

}  // namespace

void bench::AddTextRows() {
  AddSplitRows();
  AddReplaceRows();
  AddLineRows();
  AddListRows();
}
