// Character encodings, codecs and digests.

#include <utility>

#include "gxclient_util.h"
#include "gxutil.h"

namespace gxutil {
namespace {

// A decoder returns the empty string for bad input, and for empty input.
int PrintDecoded(const std::string& text, const std::string& bytes, const std::string& rule) {
  if (!bytes.empty() || text.empty()) return PrintBytes(bytes);
  if (text.find_first_of("\r\n") == std::string::npos) return Fail("the input is not " + rule);
  return Fail("the input has line breaks; remove them with tr -d '\\r\\n'");
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

int Transcode(CommandLine& line) {
  constexpr long kLargestBuffer = 1 << 30;
  const std::string& from = line.Operand("FROM", "The encoding of the text, '' for the locale's");
  const std::string& to = line.Operand("TO", "The encoding of the result, '' for the locale's");
  std::string& text = line.Input("TEXT", "The text itself");
  const auto& size = line.Option("-b, --buffer", "SIZE", "Print a whole buffer of SIZE bytes");
  line.Notes(
      "Without -b, the result ends at its first zero byte: use -b for UTF-16 and UCS-2.\n"
      "Characters that cannot be converted are dropped, or end the result. The exit\n"
      "status is 1 if that was logged. Losses without a log line: the end of a text in\n"
      "UTF-7 or CP1258, and invalid bytes in a text of more than 8,000 characters.");
  line.Parse();
  if (!size) return PrintBytes(GXUtils::Transcode(from.c_str(), to.c_str(), std::move(text)));
  const long bytes = ReadNumber(*size);
  if (bytes < 0 || bytes > kLargestBuffer) throw UsageError(*size + ": out of range");
  std::string buffer(static_cast<std::size_t>(bytes), '\0');
  GXUtils::Transcode(from.c_str(), to.c_str(), text.data(), text.size(), buffer.data(),
                     buffer.size());
  return PrintBytes(buffer);
}

int ToLower(CommandLine& line) {
  std::string& text = line.Input("TEXT", "The UTF-8 text itself");
  line.Notes("The locale determines which characters are letters: only A to Z in locale C.");
  line.Parse();
  const bool isCut = text.find('\0') != std::string::npos;
  (void)PrintBytes(GXUtils::ToLower(std::move(text)));
  return isCut ? Fail("the input has a NUL byte, which ends the result") : 0;
}

int Base64Encode(CommandLine& line) {
  std::string& data = line.Input("DATA", "The bytes themselves");
  line.Parse();
  return PrintBytes(GXUtils::Base64Encode(std::move(data)));
}

int Base64Decode(CommandLine& line) {
  const std::string& text = line.Input("TEXT", "The text itself");
  line.Notes("A line break is not part of Base64: remove it with tr -d '\\r\\n'.");
  line.Parse();
  return PrintDecoded(text, GXUtils::Base64Decode(text),
                      "Base64: groups of four of A-Z a-z 0-9 + / =");
}

int HexAsciiToString(CommandLine& line) {
  const std::string& text = line.Input("TEXT", "The digits themselves");
  line.Parse();
  return PrintDecoded(text, GXUtils::HexASCIIToString(text), "pairs of hexadecimal digits");
}

int Sha256Digest(CommandLine& line) {
  const std::string& data = line.Input("DATA", "The data itself");
  line.Parse();
  return PrintLine(HexDigest(data));
}

}  // namespace

Group EncodingGroup() {
  return {"Encodings",
          {
              {"transcode", "Transcode", "Convert a text to another character encoding",
               "printf 'gr\\374n' | gxutil transcode ISO-8859-1 UTF-8", Transcode},
              {"to-lower", "ToLower", "Lower the letters of a UTF-8 text", "gxutil to-lower 'GRÜN'",
               ToLower},
              {"base64-encode", "Base64Encode", "Write bytes as Base64 text",
               "gxutil base64-encode Hello", Base64Encode},
              {"base64-decode", "Base64Decode", "Read Base64 text",
               "gxutil base64-decode SGVsbG8=", Base64Decode},
              {"hex-ascii-to-string", "HexASCIIToString", "Read hexadecimal digits",
               "gxutil hex-ascii-to-string 48656c6c6f", HexAsciiToString},
              {"sha256-digest", "SHA256Digest", "Print the SHA-256 digest in hexadecimal",
               "gxutil sha256-digest -f /bin/ls", Sha256Digest},
          }};
}

}  // namespace gxutil
