// Character sets, codecs and digests. The commands are filters: they read the standard input where
// no text is given, and print bytes as they are.

#include "gxclient_util.h"
#include "gxutil.h"

namespace gxutil {

void AddEncodingCommands(CLI::App& app) {
  Add(app, "transcode", "Convert a text to another character encoding", [](CLI::App& command) {
    const auto from = Operand(command, "FROM", "Its encoding, '' for the locale's");
    const auto to = Operand(command, "TO", "The other encoding, '' for the locale's");
    const auto text = Input(command, "TEXT", "The text");
    const auto* size = command.add_option("-b,--buffer", "Print a whole buffer of this size")
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
}

}  // namespace gxutil
