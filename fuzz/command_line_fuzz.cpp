// Input: the command line. Its arguments are made an array.

#include "fuzz.h"
#include "support/argvector.h"

std::vector<World> Worlds() { return {{"", 8, {"a", " ", "\"", "\t"}}, {"", 2, EveryByte()}}; }

// The grammar a step at a time: each erases what it consumes.
void Check(std::string input) {
  const Strings arguments = GXUtils::SplitCommandLine(input);
  const bool hasNul = input.find('\0') != std::string::npos;  // which ends an argument of the array
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
  assert(hasNul || Strings(array, array + arguments.size()) == arguments);
  assert(array[arguments.size()] == nullptr);
}
