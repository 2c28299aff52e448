// Runs a target over its worlds. With an argument, prints their tokens for libFuzzer instead.

#include <csignal>

#include <unistd.h>

#include "fuzz.h"

namespace {

std::string input;

void PrintInput(int) { (void)dprintf(STDERR_FILENO, "input:    %s\n", Shown(input).c_str()); }

void CheckAll(const World& world, std::size_t left, const std::string& text) {
  Check(input = text);
  if (left == 0) return;
  for (const std::string& token : world.tokens) CheckAll(world, left - 1, text + token);
}

}  // namespace

int main(int count, char**) {
  (void)std::signal(SIGABRT, PrintInput);
  for (const World& world : Worlds()) {
    if (count == 1) {
      CheckAll(world, world.count, "");
      continue;
    }
    for (const std::string& token : world.tokens) std::puts(Shown(token).c_str());
  }
}
