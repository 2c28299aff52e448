// Runs the files of a directory through a target, under any compiler.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz.h"

int main(int, char** arguments) {
  int runs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    (void)std::fprintf(stderr, "%s\n", entry.path().c_str());
    std::ifstream file(entry.path(), std::ios::binary);
    Check({std::istreambuf_iterator<char>(file), {}});
    ++runs;
  }
  return runs > 0 ? 0 : 1;
}
