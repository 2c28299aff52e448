// usage: PROGRAM [TEXT]   prints a line of a Markdown table for each comparison whose name has the text
#include "bench.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <utility>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::chrono::duration<double, std::nano>;

constexpr int kRounds = 15;  // in a new order each
constexpr Nanoseconds kTimePerRound = std::chrono::milliseconds(50);
constexpr Nanoseconds kTimePerSample = std::chrono::microseconds(20);  // hides reading the clock

struct Comparison {
  std::string row;
  std::string peer;
  bench::Calls ours;
  bench::Calls theirs;
  std::size_t memory;
  std::vector<double> times{};  // nanoseconds a call of ours, one a round
  std::vector<double> ratios{};
};

std::vector<Comparison>& Comparisons() {
  static std::vector<Comparison> comparisons;
  return comparisons;
}

Nanoseconds Time(const bench::Calls& calls, int count) {
  const auto start = Clock::now();
  calls(count);
  return Clock::now() - start;
}

int CallsPerSample(const bench::Calls& calls) {
  int count = 1;
  while (Time(calls, count) < kTimePerSample) count *= 2;
  return count;
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void MeasureRound(Comparison& comparison) {
  const std::string held(comparison.memory, 'x');
  bench::Use(held);
  const int count = std::max(CallsPerSample(comparison.ours), CallsPerSample(comparison.theirs));
  std::vector<double> ours;
  std::vector<double> theirs;
  bool isFirst = true;
  for (const auto start = Clock::now(); ours.empty() || Clock::now() - start < kTimePerRound;) {
    if (isFirst) ours.push_back(Time(comparison.ours, count).count() / count);
    theirs.push_back(Time(comparison.theirs, count).count() / count);
    if (!isFirst) ours.push_back(Time(comparison.ours, count).count() / count);
    isFirst = !isFirst;
  }
  comparison.times.push_back(Median(ours));
  comparison.ratios.push_back(Median(ours) / Median(theirs));
}

}  // namespace

void bench::Row::Add(const std::string& peer, Calls calls) const {
  Comparisons().push_back({name_, peer, calls_, std::move(calls), memory_});
}

int main(int argc, char** argv) {
  bench::AddRows();
  const std::string text = argc > 1 ? argv[1] : "";
  std::vector<Comparison*> chosen;
  for (Comparison& comparison : Comparisons()) {
    if (comparison.row.find(text) != std::string::npos) chosen.push_back(&comparison);
  }
  std::mt19937 random(1);
  for (int round = 0; round < kRounds; ++round) {
    std::shuffle(chosen.begin(), chosen.end(), random);
    for (Comparison* comparison : chosen) MeasureRound(*comparison);
  }
  for (const Comparison& comparison : Comparisons()) {
    if (comparison.ratios.empty()) continue;
    std::printf("| %s | %.3f | %s | %.2f |\n", comparison.row.c_str(),
                Median(comparison.times) / 1000, comparison.peer.c_str(),
                Median(comparison.ratios));
  }
}
