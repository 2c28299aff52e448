#include "bench.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <cmath>
#include <cstdio>
#include <map>
#include <vector>

namespace {

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
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
        medians_[run.run_name.function_name] = run.GetAdjustedRealTime();
      }
    }
  }

  void Finalize() override {
    std::printf("| function | time (us) | baseline | time (us) | ratio | to reach |\n");
    std::printf("|---|---:|---|---:|---:|---:|\n");
    for (const Comparison& row : comparisons) {
      const auto subject = medians_.find(row.subject);
      const auto baseline = medians_.find(row.subject + " : " + row.baseline);
      if (subject == medians_.end() || baseline == medians_.end()) continue;
      const double ratio = subject->second / baseline->second;
      std::printf("| %s | %.3f | %s | %.3f | %.2f%s |", row.subject.c_str(), subject->second / 1000,
                  row.baseline.c_str(), baseline->second / 1000, ratio,
                  ratio > row.target ? " (!)" : "");
      std::printf(std::isinf(row.target) ? " |\n" : " %.2f |\n", row.target);
    }
  }

 private:
  std::map<std::string, double> medians_;  // nanoseconds
};

// Freed memory stays with the process. Whether the allocator gives it back depends on the rows that
// ran before, and the page faults that follow would drown what the rows with large inputs compare.
void KeepFreedMemory() {
#ifdef __GLIBC__
  mallopt(M_MMAP_THRESHOLD, 1 << 25);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
#endif
}

}  // namespace

void bench::Compare(const std::string& subject, const std::string& baseline, double target) {
  comparisons.push_back({subject, baseline, target});
}

int main(int argc, char** argv) {
  KeepFreedMemory();
  bench::AddCodecRows();
  bench::AddProcessRows();
  bench::AddTextRows();
  bench::AddEncodingRows();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  RatioTable table;
  benchmark::RunSpecifiedBenchmarks(&table);
  return 0;
}
