#include <algorithm>
#include <cstdlib>
#include <cwctype>
#include <string>
#include <tuple>
#include <vector>

#include <iconv.h>

#include "bench.h"
#include "gxclient_util.h"

using namespace std::string_literals;

namespace {

// The calls that a conversion takes, into a buffer that is there already. The text is the caller's
// copy in the module's rows and in the baselines alike.
std::size_t BareConvert(const char* from, const char* to, const char* in, std::size_t inlen,
                        std::vector<char>& buffer) {
  const iconv_t descriptor = iconv_open(to, from);
  if (descriptor == reinterpret_cast<iconv_t>(-1)) std::abort();
  char* input = const_cast<char*>(in);
  char* output = buffer.data();
  std::size_t room = buffer.size();
  if (iconv(descriptor, &input, &inlen, &output, &room) != 0) std::abort();
  iconv_close(descriptor);
  return buffer.size() - room;
}

void BareLower(const std::string& text, std::vector<char>& wide, std::vector<char>& narrow) {
  const std::size_t size = BareConvert("UTF-8", "UCS-2LE//IGNORE", text.data(), text.size(), wide);
  for (std::size_t at = 0; at < size; at += 2) {
    const auto low = static_cast<unsigned char>(wide[at]);
    const auto high = static_cast<unsigned char>(wide[at + 1]);
    const wint_t lowered = std::towlower(static_cast<wint_t>(low | high << 8));
    wide[at] = static_cast<char>(lowered);
    wide[at + 1] = static_cast<char>(lowered >> 8);
  }
  BareConvert("UCS-2LE", "UTF-8//IGNORE", wide.data(), size, narrow);
  benchmark::DoNotOptimize(narrow.data());
}

std::string Text(std::size_t size) {
  const std::string piece =
      "Gr\xC3\xBC\xC3\x9F"
      "e an Anna ";
  std::string text;
  while (text.size() + piece.size() <= size) text += piece;
  return text.append(size - text.size(), 'x');
}

}  // namespace

void bench::AddEncodingRows() {
  for (const auto& [name, size, transcode, lower] :
       {std::tuple("16 bytes", 16, 1.2, 1.25), std::tuple("4 KiB", 4096, 1.1, 1.05),
        std::tuple("1 MiB", 1 << 20, 1.1, 1.05)}) {
    const std::string text = Text(static_cast<std::size_t>(size));
    std::vector<char> buffer(text.size() * 4 + 8);
    Row("Transcode, "s + name, [text] {
      benchmark::DoNotOptimize(GXUtils::Transcode("ISO-8859-1", "UTF-8", text));
    }).Against("bare iconv calls", transcode, [text, buffer]() mutable {
      const std::string copy = text;
      BareConvert("ISO-8859-1", "UTF-8//IGNORE", copy.data(), copy.size(), buffer);
      benchmark::DoNotOptimize(buffer.data());
    });
    if (size == 16) {
      Row("Transcode, buffer, "s + name, [text, buffer]() mutable {
        GXUtils::Transcode("UTF-8", "UCS-2", text.data(), text.size(), buffer.data(), 34);
        benchmark::DoNotOptimize(buffer.data());
      }).Against("bare iconv calls", 1.15, [text, buffer]() mutable {
        buffer.resize(34);
        std::fill(buffer.begin(), buffer.end(), '\0');
        BareConvert("UTF-8", "UCS-2LE//IGNORE", text.data(), text.size(), buffer);
        benchmark::DoNotOptimize(buffer.data());
      });
    }
    Row("ToLower, "s + name, [text] { benchmark::DoNotOptimize(GXUtils::ToLower(text)); })
        .Against(
            "bare iconv calls and towlower", lower,
            [text, wide = buffer, narrow = buffer]() mutable { BareLower(text, wide, narrow); });
  }
}
