// Input: the command line. Its arguments are made an array.

#include <cstring>

#include "fuzz.h"
#include "support/argvector.h"

std::vector<World> Worlds() { return {{"", 8, {"a", " ", "\"", "\t"}}, {"", 2, EveryByte()}}; }

// The grammar a step at a time: each erases what it consumes.
void Check(std::string input) {
  const Strings arguments = GXUtils::SplitCommandLine(input);
  Strings expected;
  for (std::size_t end = 0; end != std::string::npos; input.erase(0, end + 1)) {
    const bool quoted = !input.empty() && input.front() == '"';
    const std::size_t quote = quoted ? input.find('"', 1) : std::string::npos;
    end = input.find(' ');
    if (quote != std::string::npos) {
      expected.push_back(input.substr(1, quote - 1));
      end = quote;
    } else if (!quoted && end != 0 && !input.empty()) {
      expected.push_back(input.substr(0, end));
    }
  }
  assert(arguments == expected);

  ArgVector builder;
  for (const std::string& argument : arguments) {
    (void)builder.getArgArray();  // is valid until the next argument is added
    builder.addArgument(argument);
  }
  const char* const* array = builder.getArgArray();
  for (const std::string& argument : arguments) assert(!std::strcmp(*array++, argument.c_str()));
  assert(*array == nullptr);
}
