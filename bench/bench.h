/// @file
/// Rows of the benchmark: a function of the module beside one or more baselines, all timed in the
/// same run and in random order or in turn, so that a noisy machine disturbs both alike.
#pragma once

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

/// Notes that `subject` is to be compared with `baseline` and take at most `target` times as long.
void Compare(const std::string& subject, const std::string& baseline, double target);

/// The counters of a row whose sides are called in turn: nanoseconds, and the ratio of the medians.
constexpr char kSubjectTime[] = "subject";
constexpr char kRatio[] = "ratio";

template <class Body>
void Time(const std::string& name, Body body) {
  benchmark::RegisterBenchmark(name.c_str(), [body](benchmark::State& state) mutable {
    for (auto _ : state) body();
  })->UseRealTime();
}

/// A row: `Row("Strip", [] { ... }).Against("bare loop", 1.1, [] { ... });`
class Row {
 public:
  template <class Body>
  Row(std::string name, Body body) : name_(std::move(name)) {
    Time(name_, std::move(body));
  }

  template <class Body>
  const Row& Against(const std::string& baseline, double target, Body body) const {
    Time(name_ + " : " + baseline, std::move(body));
    Compare(name_, baseline, target);
    return *this;
  }

 private:
  std::string name_;
};

/// The time that one call takes, in nanoseconds.
template <class Body>
double TimeOnce(Body& body) {
  const auto start = std::chrono::steady_clock::now();
  body();
  return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

inline double Median(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

/// A row whose two sides are called in turn, each of them first every other time. For what depends
/// on the state of the machine more than on the code, such as fork(): blocks of one side scatter.
/// A repetition makes `pairs` calls of each side; the process holds `memory` bytes more meanwhile.
template <class Subject, class Body>
void CompareInTurn(const std::string& name, Subject subject, const std::string& baseline,
                   double target, Body body, int pairs, std::size_t memory = 0) {
  const auto run = [=](benchmark::State& state) mutable {
    const std::string held(memory, 'x');
    std::vector<double> subjectTimes;
    std::vector<double> baselineTimes;
    for (auto _ : state) {
      const bool isFirst = subjectTimes.size() % 2 == 0;
      if (isFirst) subjectTimes.push_back(TimeOnce(subject));
      baselineTimes.push_back(TimeOnce(body));
      if (!isFirst) subjectTimes.push_back(TimeOnce(subject));
    }
    state.counters[kSubjectTime] = Median(subjectTimes);
    state.counters[kRatio] = Median(subjectTimes) / Median(baselineTimes);
  };
  benchmark::RegisterBenchmark((name + " : " + baseline).c_str(), run)
      ->Iterations(pairs)
      ->UseRealTime();
  Compare(name, baseline, target);
}

/// Adds the rows of the program.
void AddRows();

void AddCodecRows();
void AddTextRows();
void AddEncodingRows();

}  // namespace bench
