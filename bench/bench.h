/// @file
/// Rows of the benchmark: a function of the module beside one or more baselines. The two sides of a
/// row are called in turn, each of them first every other time, so that a noisy machine disturbs
/// both alike.
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

/// The counters of a row: nanoseconds that a call of the function takes, and the ratio of the
/// medians.
constexpr char kSubjectTime[] = "subject";
constexpr char kRatio[] = "ratio";

/// The time that a call takes, in nanoseconds, measured over so many calls.
template <class Body>
double TimePerCall(Body& body, int calls) {
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < calls; ++i) body();
  const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
  return time.count() / calls;
}

/// How many calls take 20 microseconds, beside which reading the clock takes no time.
template <class Body>
int CallsAtOnce(Body& body) {
  int calls = 1;
  while (TimePerCall(body, calls) * calls < 20000) calls *= 2;
  return calls;
}

inline double Median(std::vector<double> times) {
  const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
  std::nth_element(times.begin(), middle, times.end());
  return *middle;
}

/// A row: `Row("Strip", [] { ... }).Against("bare loop", 1.1, [] { ... });`
template <class Subject>
class Row {
 public:
  /// The process holds `memory` bytes more while the row is timed.
  Row(std::string name, Subject subject, std::size_t memory = 0)
      : name_(std::move(name)), subject_(std::move(subject)), memory_(memory) {}

  template <class Body>
  const Row& Against(const std::string& baseline, double target, Body body) const {
    const auto run = [subject = subject_, body, memory = memory_,
                      isFirst = false](benchmark::State& state) mutable {
      const std::string held(memory, 'x');
      const int calls = std::max(CallsAtOnce(subject), CallsAtOnce(body));
      std::vector<double> times;
      std::vector<double> baselineTimes;
      for (auto _ : state) {
        isFirst = !isFirst;
        if (isFirst) times.push_back(TimePerCall(subject, calls));
        baselineTimes.push_back(TimePerCall(body, calls));
        if (!isFirst) times.push_back(TimePerCall(subject, calls));
      }
      const double subjectTime = Median(times);
      state.counters[kSubjectTime] = subjectTime;
      state.counters[kRatio] = subjectTime / Median(baselineTimes);
    };
    benchmark::RegisterBenchmark((name_ + " : " + baseline).c_str(), run)->UseRealTime();
    Compare(name_, baseline, target);
    return *this;
  }

 private:
  std::string name_;
  Subject subject_;
  std::size_t memory_;
};

/// Adds the rows of the program.
void AddRows();

void AddCodecRows();
void AddTextRows();
void AddEncodingRows();

}  // namespace bench
