#include "bench.h"

#include <cmath>
#include <cstdio>
#include <map>
#include <utility>
#include <vector>

namespace {

#ifdef __clang__
constexpr char kCompiler[] = __VERSION__;
#else
constexpr char kCompiler[] = "g++ " __VERSION__;
#endif

struct Comparison {
  std::string subject;
  std::string baseline;
  double target;
};
std::vector<Comparison> comparisons;

// Collects the medians and prints one line a comparison, as a Markdown table.
class RatioTable : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median") continue;
      medians_[run.run_name.function_name] = {run.counters.at(bench::kSubjectTime),
                                              run.counters.at(bench::kRatio)};
    }
  }

  void Finalize() override {
    std::printf("| function | time (us) | baseline | ratio | to reach |\n");
    std::printf("|---|---:|---|---:|---:|\n");
    for (const Comparison& row : comparisons) {
      const auto found = medians_.find(row.subject + " : " + row.baseline);
      if (found == medians_.end()) continue;
      const auto [time, ratio] = found->second;
      std::printf("| %s | %.3f | %s | %.2f%s |", row.subject.c_str(), time / 1000,
                  row.baseline.c_str(), ratio, ratio > row.target ? " (!)" : "");
      std::printf(std::isinf(row.target) ? " |\n" : " %.2f |\n", row.target);
    }
  }

 private:
  std::map<std::string, std::pair<double, double>> medians_;  // nanoseconds a call, ratio
};

}  // namespace

void bench::Compare(const std::string& subject, const std::string& baseline, double target) {
  comparisons.push_back({subject, baseline, target});
}

int main(int argc, char** argv) {
  bench::AddRows();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::AddCustomContext("compiler", kCompiler);
  RatioTable table;
  benchmark::RunSpecifiedBenchmarks(&table);
  return 0;
}
