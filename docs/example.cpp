// Prints what a program wrote, line by line.
#include "gxclient_util.h"

#include <iostream>

int main() {
  std::string output;
  int exitCode = 0;
  if (GXUtils::System("ls -d /bin /etc", &output, &exitCode) != 0) {
    std::cerr << "ls did not run\n";  // the log says why
    return 1;
  }
  std::string pending;  // a last line without a line end
  for (const std::string& line : GXUtils::StringLines(output.c_str(), &pending)) {
    std::cout << "found " << line << '\n';
  }
  return exitCode;
}
