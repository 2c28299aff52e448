// A tour of the library: run a program, follow another one while it runs, store a list of names.
#include "gxclient_util.h"
#include "support/gxexception.h"

#include <iostream>

#include <sys/wait.h>
#include <unistd.h>

using namespace GXUtils;

// The result 0 means that the program ran. Whether it succeeded is in `exitCode`.
bool ListDirectories() {
  std::string output;
  int exitCode = 0;
  if (System("ls -d /bin /etc", &output, &exitCode) != 0) return false;
  std::cout << output;
  return exitCode == 0;
}

// An array passes each argument as it is, so the name may hold spaces and quotes.
bool PrintWhileItRuns(const std::string& name) {
  const char* const argv[] = {"echo", name.c_str(), nullptr};
  int out = -1;
  const int pid = SystemNowait(argv, &out);
  if (pid < 0) return false;  // `out` is unchanged, and there is no child to wait for
  std::string tail;           // the unfinished line
  char piece[256];
  for (ssize_t count; (count = read(out, piece, sizeof piece - 1)) > 0;) {
    piece[count] = '\0';
    for (const std::string& line : StringLines(piece, &tail)) std::cout << "echo: " << line << '\n';
  }
  close(out);
  int status = 0;
  return waitpid(pid, &status, 0) == pid && status == 0;
}

int main() {
  const std::string stored = EncodeStringList({"red, green", "blue"}, ',');
  std::list<std::string> names;
  if (!DecodeStringList(stored, &names, ',')) return 1;  // the log has the reason
  bool succeeded = ListDirectories();
  for (const std::string& name : names) succeeded = PrintWhileItRuns(name) && succeeded;
  try {
    System("");
  } catch (const GXException& error) {
    std::cout << error.code() << ": " << error.what() << '\n';
  }
  return succeeded ? 0 : 1;
}
