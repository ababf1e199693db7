// The benchmark program: Google Benchmark's flags, our one-table reporter
// with the targets' ratios. Peers run single-threaded, as we do.
#include <benchmark/benchmark.h>

#include "bench/summary_reporter.h"
#include "bench/targets.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  bench::SummaryReporter reporter(bench::targets());
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
