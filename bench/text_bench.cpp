#include <cctype>
#include <cstdlib>
#include <cstring>
#include <list>
#include <memory>
#include <string>
#include <vector>

#include <malloc.h>
#include <strings.h>

#include <absl/strings/str_join.h>
#include <absl/strings/str_replace.h>
#include <absl/strings/str_split.h>
#include <event2/buffer.h>
#include <glib.h>
#include <boost/tokenizer.hpp>

#include "bench.h"
#include "gxclient_util.h"

namespace {

std::string Repeated(const std::string& piece, std::size_t size) {
  std::string text;
  while (text.size() < size) text += piece;
  return text;
}

void AddSplitRow(const std::string& name, const std::string& text, char separator) {
  bench::Row("SplitString, " + name, [=] {
    bench::Use(GXUtils::SplitString(text, separator));
  }).Against("Abseil", [=] {
    const std::vector<std::string> fields = absl::StrSplit(text, separator);
    bench::Use(fields);
  });
}

void AddReplaceRow(const std::string& name, const std::string& text, const char* pattern,
                   const char* replacement) {
  bench::Row("ReplaceInString, " + name, [=] {
    std::string copy = text;
    bench::Use(GXUtils::ReplaceInString(copy, pattern, replacement));
  }).Against("Abseil", [=] {
    const std::string copy = text;
    bench::Use(absl::StrReplaceAll(copy, {{pattern, replacement}}));
  });
}

void AddLinesRow() {
  const std::string text = Repeated(std::string(79, 'x') + "\n", 16 << 20);
  std::vector<std::string> chunks;
  for (std::size_t start = 0; start < text.size(); start += 255) {
    chunks.push_back(text.substr(start, 255));
  }
  bench::Row("StringLines, 16 MiB in chunks of 255 bytes", [chunks] {
    std::string tail;
    for (const std::string& chunk : chunks) bench::Use(GXUtils::StringLines(chunk.c_str(), &tail));
  }).Against("libevent", [chunks] {
    evbuffer* buffer = evbuffer_new();
    for (const std::string& chunk : chunks) {
      evbuffer_add(buffer, chunk.data(), chunk.size());
      std::vector<std::string> lines;
      std::size_t size = 0;
      while (char* line = evbuffer_readln(buffer, &size, EVBUFFER_EOL_CRLF)) {
        lines.emplace_back(line, size);
        std::free(line);
      }
      bench::Use(lines);
    }
    evbuffer_free(buffer);
  });
}

void AddCommandLineRow(const std::string& name, const std::string& line) {
  const bench::Row row("SplitCommandLine, " + name,
                       [line] { bench::Use(GXUtils::SplitCommandLine(line)); });
  row.Against("GLib", [line] {
    char** arguments = nullptr;
    if (g_shell_parse_argv(line.c_str(), nullptr, &arguments, nullptr) == 0) std::abort();
    g_strfreev(arguments);
  });
  row.Against("Boost.Tokenizer", [line] {
    using Separator = boost::escaped_list_separator<char>;
    const boost::tokenizer<Separator> tokens(line, Separator('\\', ' ', '"'));
    bench::Use(std::vector<std::string>(tokens.begin(), tokens.end()));
  });
}

void AddListRows(const std::string& name, std::size_t count, std::size_t size) {
  // Shared: a copy of its own would stand elsewhere in memory and cost one side more cache misses.
  const auto elements = std::make_shared<std::list<std::string>>(count, std::string(size, 'e'));
  const std::string text = GXUtils::EncodeStringList(*elements, ',');
  bench::Row("EncodeStringList, " + name, [elements] {
    bench::Use(GXUtils::EncodeStringList(*elements, ','));
  }).Against("Abseil", [elements] {
    bench::Use(absl::StrJoin(*elements, ", ", [](std::string* out, const std::string& element) {
      out->append(absl::StrReplaceAll(element, {{"\\", "\\\\"}, {",", "\\,"}}));
    }));
  });
  bench::Row("DecodeStringList, " + name, [text] {
    std::list<std::string> output;
    GXUtils::DecodeStringList(text, &output, ',');
    bench::Use(output);
  }).Against("Boost.Tokenizer", [text] {
    const boost::tokenizer<boost::escaped_list_separator<char>> tokens(text);
    bench::Use(std::list<std::string>(tokens.begin(), tokens.end()));
  });
}

void AddComparisonRow(const std::string& name, int (*subject)(const char*, const char*),
                      const std::string& peer, int (*body)(const char*, const char*),
                      const std::string& first, const std::string& second) {
  bench::Row(name, [=] { bench::Use(subject(first.c_str(), second.c_str())); }).Against(peer, [=] {
    bench::Use(body(first.c_str(), second.c_str()));
  });
}

}  // namespace

void bench::AddTextRows() {
  AddSplitRow("8 fields", "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin:/x:/y",
              ':');
  AddSplitRow("1 MiB", Repeated("a field of text,", 1 << 20), ',');
  AddSplitRow("1 MiB, fields of 1 byte", Repeated("x,", 1 << 20), ',');
  const std::string line = std::string(30, 'x') + "ab" + std::string(32, 'y');
  AddReplaceRow("64 bytes, shorter", line, "ab", "c");
  AddReplaceRow("64 bytes, longer", line, "ab", "cde");
  AddReplaceRow("1 MiB, shorter", Repeated(std::string(78, 'x') + "\r\n", 1 << 20), "\r\n", "\n");
  AddReplaceRow("1 MiB, a hit each byte, longer", std::string(1 << 20, 'a'), "a", "bb");
  AddLinesRow();
  // Command lines stand here, since the other program gives memory back at once.
  const std::string five = "/usr/bin/program --verbose --output file.txt input";
  std::string megabyte = five;
  while (megabyte.size() < 1U << 20) megabyte += " " + five;
  AddCommandLineRow("5 arguments", five);
  AddCommandLineRow("1 MiB", megabyte);
  AddListRows("10 elements of 16 bytes", 10, 16);
  AddListRows("1000 of 16 bytes", 1000, 16);
  AddListRows("65536 of 16 bytes", 65536, 16);
  AddListRows("16 of 64 KiB", 16, 65536);
  AddComparisonRow("CompareVersions, 4 components", GXUtils::CompareVersions, "strverscmp",
                   strverscmp, "10.20.30.40", "10.20.30.41");
  const std::string digits = Repeated("1f3a5b7c9d0e2f4a", 64);
  std::string capitals = digits;
  for (char& c : capitals) c = static_cast<char>(std::toupper(c));
  AddComparisonRow("CompareHexStrings, 64 digits", GXUtils::CompareHexStrings, "strcasecmp",
                   strcasecmp, digits, digits);
  AddComparisonRow("CompareHexStrings, 64 digits of either case", GXUtils::CompareHexStrings,
                   "strcasecmp", strcasecmp, digits, capitals);
}

// Freed memory stays with the process. Whether the allocator gives it back depends on the rows that
// ran before, and the page faults that follow would hide the difference between two large rows.
void bench::AddRows() {
  mallopt(M_MMAP_THRESHOLD, 1 << 25);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  AddCodecRows();
  AddTextRows();
  AddEncodingRows();
}
