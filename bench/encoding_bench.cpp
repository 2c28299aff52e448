#include <cstdlib>
#include <string>
#include <utility>

#include <glib.h>
#include <iconv.h>

#include "bench.h"
#include "gxclient_util.h"

namespace {

// The calls that a conversion takes, into a buffer that is there already.
void BareConvert(const char* from, const char* to, std::string text, std::string& buffer) {
  const iconv_t descriptor = iconv_open(to, from);
  if (descriptor == reinterpret_cast<iconv_t>(-1)) std::abort();
  char* input = text.data();
  std::size_t left = text.size();
  char* output = buffer.data();
  std::size_t room = buffer.size();
  if (iconv(descriptor, &input, &left, &output, &room) != 0) std::abort();
  iconv_close(descriptor);
  bench::Use(buffer);
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
  for (const auto& [name, size] :
       {std::pair("4 KiB", 4096), {"16 bytes", 16}, {"1 MiB", 1 << 20}}) {
    const std::string text = Text(static_cast<std::size_t>(size));
    const std::string room(text.size() * 4 + 8, '\0');
    const Row transcode(std::string("Transcode, ") + name,
                        [text] { Use(GXUtils::Transcode("ISO-8859-1", "UTF-8", text)); });
    transcode.Against("the bare calls", [text, buffer = room]() mutable {
      BareConvert("ISO-8859-1", "UTF-8//IGNORE", text, buffer);
    });
    if (size == 16) {
      Row("Transcode, buffer of 34 bytes", [text, buffer = room]() mutable {
        GXUtils::Transcode("UTF-8", "UCS-2", text.data(), text.size(), buffer.data(), 34);
        Use(buffer);
      }).Against("the bare calls", [text, buffer = room]() mutable {
        BareConvert("UTF-8", "UCS-2LE//IGNORE", text, buffer.assign(34, '\0'));
      });
    }
    transcode.Against("GLib", [text] {
      const auto length = static_cast<gssize>(text.size());
      char* result =
          g_convert(text.data(), length, "UTF-8", "ISO-8859-1", nullptr, nullptr, nullptr);
      Use(std::string(result));
      g_free(result);
    });
    Row(std::string("ToLower, ") + name, [text] {
      Use(GXUtils::ToLower(text));
    }).Against("GLib", [text] {
      char* result = g_utf8_strdown(text.data(), static_cast<gssize>(text.size()));
      Use(std::string(result));
      g_free(result);
    });
  }
}
