// Runs a target over its worlds; with an argument, prints their tokens as a dictionary of libFuzzer.

#include <csignal>
#include <cstdio>

#include <unistd.h>

#include "fuzz.h"

namespace {

std::string input;

void Show(int fd, const std::string& text) {
  (void)dprintf(fd, "\"");
  for (const char byte : text) (void)dprintf(fd, "\\x%02hhx", byte);
  (void)dprintf(fd, "\"\n");
}

void CheckAll(const World& world, std::size_t left) {
  Check(input);
  if (left == 0) return;
  const std::size_t size = input.size();
  for (const std::string& token : world.tokens) {
    input += token;
    CheckAll(world, left - 1);
    input.resize(size);
  }
}

}  // namespace

int main(int count, char**) {
  (void)std::signal(SIGABRT, [](int) { Show(STDERR_FILENO, input); });
  for (const World& world : Worlds()) {
    input = world.start;
    if (count == 1) {
      CheckAll(world, world.count);
      continue;
    }
    for (const std::string& token : world.tokens) Show(STDOUT_FILENO, token);
  }
}
