// Character sets, codecs and digests. The commands are filters: they read the standard input where
// no text is given, and print bytes as they are.

#include <cerrno>
#include <utility>

#include "gxclient_util.h"
#include "gxutil.h"
#include "internal/iconv_descriptor.h"

namespace gxutil {
namespace {

// A decoder gives the empty string for bad input, which empty input does as well. `rule` says what
// good input is.
int PrintDecoded(const std::string& text, const std::string& bytes, const std::string& rule) {
  if (!bytes.empty() || text.empty()) return PrintBytes(bytes);
  if (text.find_first_of("\r\n") == std::string::npos) return Fail("the text is not " + rule);
  return Fail("a line feed is not part of the text; tr -d '\\r\\n' takes it out");
}

struct WholeConversion {
  std::size_t size = 0;
  std::string trouble;  // what the module's conversion loses and does not log; empty: nothing
};

// Converts all of a text as the module does not: without leaving anything out, and with a last call
// for what iconv holds back, such as a letter that an accent may follow.
WholeConversion ConvertWhole(const std::string& from, const std::string& to,
                             const std::string& text) {
  using GXInternal::Normalised;
  const GXInternal::IconvDescriptor descriptor(Normalised(from.c_str()), Normalised(to.c_str()));
  WholeConversion whole;
  if (!descriptor.IsOpen()) return whole;
  char piece[4096];
  const char* const end = text.data() + text.size();
  GXInternal::Conversion done;
  done.inputLeft = text.size();
  do {
    done = descriptor.Convert(end - done.inputLeft, done.inputLeft, piece, sizeof piece);
    whole.size += done.written;
  } while (done.result == GXInternal::kIconvFailed && done.error == E2BIG);
  if (done.result == GXInternal::kIconvFailed) {
    whole.trouble = "a part of the text that cannot be converted is left out";
  } else if (!text.empty() && descriptor.Convert(nullptr, 0, piece, sizeof piece).written > 0) {
    whole.trouble = "the end is missing: iconv holds it back until it is asked for it";
  }
  return whole;
}

// Prints the text that the string form returns, which ends at the first zero byte.
int PrintTranscoded(const std::string& from, const std::string& to, const std::string& text) {
  const std::string converted = GXUtils::Transcode(from.c_str(), to.c_str(), text);
  (void)PrintBytes(converted);
  if (HasLogged()) return 0;  // said already that something is lost
  const WholeConversion whole = ConvertWhole(from, to, text);
  if (!whole.trouble.empty()) return Fail(whole.trouble);
  if (whole.size == converted.size()) return 0;
  return Fail("the result is printed up to its first zero byte; -b SIZE prints a whole buffer");
}

int PrintBuffer(const std::string& from, const std::string& to, const std::string& text,
                std::size_t size) {
  std::string buffer(size, '\0');
  GXUtils::Transcode(from.c_str(), to.c_str(), text.data(), text.size(), buffer.data(), size);
  (void)PrintBytes(buffer);
  if (HasLogged()) return 0;
  const std::string trouble = ConvertWhole(from, to, text).trouble;
  return trouble.empty() ? 0 : Fail(trouble);
}

int PrintLowered(std::string text) {
  if (text.find('\0') != std::string::npos) {
    return Fail("the text has a NUL byte, at which the result would end");
  }
  const std::string trouble = ConvertWhole("UTF-8", "UCS-2", text).trouble;
  (void)PrintBytes(GXUtils::ToLower(std::move(text)));
  return HasLogged() || trouble.empty() ? 0 : Fail(trouble);
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
      return PrintDecoded(text, GXUtils::Base64Decode(text), "Base64: fours of A-Z a-z 0-9 + / =");
    };
  });
  Add(app, "hex-ascii-to-string", "Read hexadecimal digits", [](CLI::App& command) {
    const auto input = Input(command, "TEXT", "The digits, without line ends");
    return [=] {
      const std::string text = input();
      return PrintDecoded(text, GXUtils::HexASCIIToString(text), "pairs of hexadecimal digits");
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
    command.footer(
        "Characters that cannot be converted are left out, or end the result. What an\n"
        "encoding writes at the end of a text (UTF-7) or holds back there for what could\n"
        "follow (CP1258) is missing. The exit status is 1 then.");
    return [=] {
      if (size->count() == 0) return PrintTranscoded(from(), to(), text());
      return PrintBuffer(from(), to(), text(), size->as<std::size_t>());
    };
  });
  Add(app, "to-lower", "Lower the letters of a UTF-8 text", [](CLI::App& command) {
    const auto text = Input(command, "TEXT", "The text");
    command.footer("The locale says which letters those are: C knows A to Z alone.");
    return [=] { return PrintLowered(text()); };
  });
  AddCodecCommands(app);
}

}  // namespace gxutil
