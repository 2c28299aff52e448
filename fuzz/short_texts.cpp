// Runs a target over its short texts. With an argument, prints their tokens for libFuzzer instead.

#include <csignal>

#include <unistd.h>

#include "fuzz.h"

namespace {

std::string input;

void PrintInput(int) { (void)dprintf(STDERR_FILENO, "input:    %s\n", Shown(input).c_str()); }

void CheckAll(const TextSet& set, std::size_t left, const std::string& text) {
  Check(input = text);
  if (left == 0) return;
  for (const std::string& token : set.tokens) CheckAll(set, left - 1, text + token);
}

}  // namespace

int main(int count, char**) {
  (void)std::signal(SIGABRT, PrintInput);
  for (const TextSet& set : ShortTexts()) {
    if (count == 1) {
      CheckAll(set, set.count, "");
      continue;
    }
    for (const std::string& token : set.tokens) std::puts(Shown(token).c_str());
  }
}
