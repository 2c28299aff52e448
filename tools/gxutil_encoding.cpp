// Character sets, codecs and digests. The commands are filters: they read the standard input where
// no text is given, and print bytes as they are.

#include "gxclient_util.h"
#include "gxutil.h"

namespace gxutil {
namespace {

// A decoder gives the empty string for bad input, which empty input does as well.
int PrintDecoded(const std::string& text, const std::string& bytes) {
  if (bytes.empty() && !text.empty()) return Fail("the text is malformed");
  return PrintBytes(bytes);
}

std::string HexDigest(const std::string& data) {
  unsigned char digest[32];
  GXUtils::SHA256Digest(data, digest);
  std::string text;
  for (const unsigned char byte : digest) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

void AddCodecCommands(CLI::App& app) {
  Add(app, "base64-encode", "Write bytes as Base64 text", [](CLI::App& command) {
    const auto data = Input(command, "DATA", "The bytes");
    return [=] { return PrintBytes(GXUtils::Base64Encode(data())); };
  });
  Add(app, "base64-decode", "Read Base64 text", [](CLI::App& command) {
    const auto input = Input(command, "TEXT", "The text, without line ends");
    return [=] {
      const std::string text = input();
      return PrintDecoded(text, GXUtils::Base64Decode(text));
    };
  });
  Add(app, "hex-ascii-to-string", "Read hexadecimal digits", [](CLI::App& command) {
    const auto input = Input(command, "TEXT", "The digits, without line ends");
    return [=] {
      const std::string text = input();
      return PrintDecoded(text, GXUtils::HexASCIIToString(text));
    };
  });
  Add(app, "sha256-digest", "Print the SHA-256 digest in hexadecimal", [](CLI::App& command) {
    const auto data = Input(command, "DATA", "The bytes");
    return [=] { return PrintLine(HexDigest(data())); };
  });
}

}  // namespace

void AddEncodingCommands(CLI::App& app) {
  Add(app, "transcode", "Convert a text to another character encoding", [](CLI::App& command) {
    const auto from = Operand(command, "FROM", "Its encoding, '' for the locale's");
    const auto to = Operand(command, "TO", "The other encoding, '' for the locale's");
    const auto text = Input(command, "TEXT", "The text");
    const auto* size = command.add_option("-b,--buffer", "Print a whole buffer of this size")
                           ->option_text("SIZE")
                           ->check(CLI::Range(0, 1 << 30));
    return [=] {
      if (size->count() == 0) {
        return PrintBytes(GXUtils::Transcode(from().c_str(), to().c_str(), text()));
      }
      const std::string in = text();
      std::string buffer(size->as<std::size_t>(), '\0');
      GXUtils::Transcode(from().c_str(), to().c_str(), in.data(), in.size(), buffer.data(),
                         buffer.size());
      return PrintBytes(buffer);
    };
  });
  Add(app, "to-lower", "Lower the letters of a UTF-8 text", [](CLI::App& command) {
    const auto text = Input(command, "TEXT", "The text");
    return [=] { return PrintBytes(GXUtils::ToLower(text())); };
  });
  AddCodecCommands(app);
}

}  // namespace gxutil
