#include "bench.h"

#include <cmath>
#include <cstdio>
#include <map>
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
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") Take(run);
    }
  }

  void Finalize() override {
    std::printf("| function | time (us) | baseline | time (us) | ratio | to reach |\n");
    std::printf("|---|---:|---|---:|---:|---:|\n");
    for (const Comparison& row : comparisons) {
      const std::string pair = row.subject + " : " + row.baseline;
      const auto baseline = medians_.find(pair);
      const auto inTurn = subjectsInTurn_.find(pair);
      const auto subject = inTurn != subjectsInTurn_.end() ? inTurn : medians_.find(row.subject);
      if (subject == medians_.end() || baseline == medians_.end()) continue;
      const double ratio = subject->second / baseline->second;
      std::printf("| %s | %.3f | %s | %.3f | %.2f%s |", row.subject.c_str(), subject->second / 1000,
                  row.baseline.c_str(), baseline->second / 1000, ratio,
                  ratio > row.target ? " (!)" : "");
      std::printf(std::isinf(row.target) ? " |\n" : " %.2f |\n", row.target);
    }
  }

 private:
  // A row whose sides are called in turn has a median for each of them.
  void Take(const Run& run) {
    const std::string& name = run.run_name.function_name;
    const auto subject = run.counters.find(bench::kSubjectTime);
    if (subject == run.counters.end()) {
      medians_[name] = run.GetAdjustedRealTime();
      return;
    }
    subjectsInTurn_[name] = subject->second;
    medians_[name] = subject->second / run.counters.at(bench::kRatio);
  }

  std::map<std::string, double> medians_;  // nanoseconds
  std::map<std::string, double> subjectsInTurn_;
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
