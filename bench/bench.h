/// @file
/// Rows of the benchmark: a function of the module beside one or more baselines, all timed in the
/// same run and in random order, so that a noisy machine disturbs both alike.
#pragma once

#include <string>
#include <utility>

#include <benchmark/benchmark.h>

namespace bench {

/// Notes that `subject` is to be compared with `baseline` and take at most `target` times as long.
void Compare(const std::string& subject, const std::string& baseline, double target);

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

void AddCodecRows();
void AddProcessRows();
void AddTextRows();
void AddEncodingRows();

}  // namespace bench
