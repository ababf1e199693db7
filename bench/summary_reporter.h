// Prints one table of every benchmark (median of its repetitions, min-max,
// counters), then the ratios of the targets and the machine's noise.
#ifndef PAVONA_BENCH_SUMMARY_REPORTER_H_
#define PAVONA_BENCH_SUMMARY_REPORTER_H_

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

#include "bench/targets.h"

namespace bench {

class SummaryReporter : public benchmark::BenchmarkReporter {
 public:
  explicit SummaryReporter(std::vector<Target> targets);

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  // One repetition: its time a call in nanoseconds and its counters.
  struct Sample {
    double nanoseconds;
    double iterations;
    std::map<std::string, double> counters;
  };

  void printTable() const;
  void printTargets() const;
  void printNoise() const;

  std::vector<Target> targets_;
  std::map<std::string, std::vector<Sample>> samples_;
  std::map<std::string, std::string> errors_;
  // The name of each finished benchmark on one rewritten terminal line.
  bool progress_;
};

}  // namespace bench

#endif  // PAVONA_BENCH_SUMMARY_REPORTER_H_
