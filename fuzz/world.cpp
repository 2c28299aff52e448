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

void CheckAll(const World& world, std::size_t left, const std::string& text) {
  Check(input = text);
  for (const std::string& token : world.tokens) {
    if (left > 0) CheckAll(world, left - 1, text + token);
  }
}

}  // namespace

int main(int count, char**) {
  (void)std::signal(SIGABRT, [](int) { Show(STDERR_FILENO, input); });
  for (const World& world : Worlds()) {
    if (count == 1) CheckAll(world, world.count, world.start);
    for (const std::string& token : world.tokens) {
      if (count > 1) Show(STDOUT_FILENO, token);
    }
  }
}
