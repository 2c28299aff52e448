// Runs a target, under any compiler, over the files of a directory and over inputs made of them: the
// same ones in every run, as many of each file as the second argument says.

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include <unistd.h>

#include "fuzz.h"

namespace {

std::string input;

void ShowInput(int) { (void)!write(STDERR_FILENO, input.data(), input.size()); }

// Some of its bytes give way to a piece of another file.
std::string Mutated(std::string bytes, const Strings& corpus, std::mt19937& random) {
  for (auto steps = random() % 4 + 1; steps > 0; --steps) {
    const std::string& other = corpus[random() % corpus.size()];
    const std::size_t from = random() % (other.size() + 1);
    const std::size_t size = random() % 2 == 0 ? 1 : random() % 16;
    const std::size_t start = random() % (bytes.size() + 1);
    bytes.replace(start, random() % 2 == 0 ? 0 : random() % 8, other, from, size);
  }
  return bytes;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return 2;
  Strings corpus;
  for (const auto& entry : std::filesystem::directory_iterator(arguments[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  std::sort(corpus.begin(), corpus.end());
  (void)std::signal(SIGABRT, ShowInput);
  std::mt19937 random(1);
  for (const std::string& seed : corpus) {
    Check(input = seed);
    for (int left = std::atoi(arguments[2]); left > 0; --left) {
      Check(input = Mutated(seed, corpus, random));
    }
  }
  return corpus.empty() ? 1 : 0;
}
