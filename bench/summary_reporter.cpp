#include "bench/summary_reporter.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <utility>

namespace bench {

namespace {

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t n = values.size();
  return n % 2 == 1 ? values[n / 2] : 0.5 * (values[n / 2 - 1] + values[n / 2]);
}

std::string formatTime(double ns) {
  char text[32];
  if (ns >= 1e6) {
    std::snprintf(text, sizeof text, "%.2f ms", ns / 1e6);
  } else if (ns >= 1e3) {
    std::snprintf(text, sizeof text, "%.1f us", ns / 1e3);
  } else {
    std::snprintf(text, sizeof text, "%.0f ns", ns);
  }
  return text;
}

std::string cpuModel() {
  std::ifstream cpuinfo("/proc/cpuinfo");
  std::string line;
  while (std::getline(cpuinfo, line)) {
    if (line.rfind("model name", 0) == 0) {
      return line.substr(line.find(':') + 2);
    }
  }
  return "unknown CPU";
}

}  // namespace

SummaryReporter::SummaryReporter(std::vector<Target> targets)
    : targets_(std::move(targets)), progress_(isatty(STDERR_FILENO) != 0) {}

bool SummaryReporter::ReportContext(const Context& context) {
  const benchmark::CPUInfo& cpu = context.cpu_info;
  std::printf("Machine: %s, %d CPUs at %.0f MHz; caches", cpuModel().c_str(),
              cpu.num_cpus, cpu.cycles_per_second / 1e6);
  for (const auto& cache : cpu.caches) {
    if (cache.type == "Instruction") continue;
    std::printf(" L%d %d KiB", cache.level, cache.size / 1024);
  }
  std::printf("\nLoad average at start:");
  for (double load : cpu.load_avg) std::printf(" %.2f", load);
  std::printf(
      "\nTimes are CPU time of one call (cold calls alone, after the "
      "frame was evicted); medians of the repetitions.\n\n");
  std::fflush(stdout);
  return true;
}

void SummaryReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) continue;
    const std::string& name = run.run_name.function_name;
    if (run.error_occurred) {
      errors_[name] = run.error_message;
      continue;
    }
    // Manual time is the thread's CPU time of the timed calls.
    const bool manual = run.run_name.time_type == "manual_time";
    const double perCall =
        manual ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
    Sample sample;
    sample.nanoseconds =
        perCall * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
    sample.iterations = static_cast<double>(run.iterations);
    for (const auto& counter : run.counters) {
      sample.counters[counter.first] = counter.second.value;
    }
    samples_[name].push_back(sample);
    if (progress_) std::fprintf(stderr, "\r%-60s", name.c_str());
  }
}

void SummaryReporter::Finalize() {
  if (progress_) std::fprintf(stderr, "\r%-60s\r", "");
  printTable();
  printTargets();
  printNoise();
  std::fflush(stdout);
}

void SummaryReporter::printTable() const {
  std::size_t width = 9;
  for (const auto& entry : samples_)
    width = std::max(width, entry.first.size());
  std::printf("%-*s %11s %23s %6s  %s\n", static_cast<int>(width), "Benchmark",
              "median", "min - max", "reps", "counters (medians)");
  for (const auto& entry : samples_) {
    const std::vector<Sample>& samples = entry.second;
    std::vector<double> times;
    for (const Sample& s : samples) times.push_back(s.nanoseconds);
    const auto [low, high] = std::minmax_element(times.begin(), times.end());
    const double middle = median(times);
    const std::string range = formatTime(*low) + " - " + formatTime(*high);
    std::printf("%-*s %11s %23s %6zu ", static_cast<int>(width),
                entry.first.c_str(), formatTime(middle).c_str(), range.c_str(),
                samples.size());
    for (const auto& counter : samples.front().counters) {
      std::vector<double> values;
      for (const Sample& s : samples)
        values.push_back(s.counters.at(counter.first));
      const double value = median(values);
      std::printf(" %s=%g", counter.first.c_str(), value);
      if (counter.first == "bytes") {
        std::printf(" (%.1f GB/s)", value / middle);
      }
    }
    std::printf("\n");
  }
  for (const auto& error : errors_) {
    std::printf("%-*s failed: %s\n", static_cast<int>(width),
                error.first.c_str(), error.second.c_str());
  }
}

void SummaryReporter::printTargets() const {
  std::printf(
      "\nRatios ours / reference, medians of the repetitions; lower is "
      "better.\nThe range beside each is the worst and best pairing of the "
      "two benchmarks' fastest and slowest repetitions.\n");
  int met = 0;
  int missed = 0;
  int width = 0;
  for (const Target& target : targets_) {
    width = std::max(width, static_cast<int>(target.label.size()));
  }
  for (const Target& target : targets_) {
    const auto ours = samples_.find(target.ours);
    const auto reference = samples_.find(target.reference);
    if (ours == samples_.end() || reference == samples_.end()) {
      std::printf("  %-*s not run (%s)\n", width, target.label.c_str(),
                  ours == samples_.end() ? target.ours.c_str()
                                         : target.reference.c_str());
      continue;
    }
    auto metric = [&](const Sample& s) {
      return target.metric == Metric::kTimePerPass
                 ? s.nanoseconds / s.counters.at("passes")
                 : s.nanoseconds;
    };
    std::vector<double> a, b;
    for (const Sample& s : ours->second) a.push_back(metric(s));
    for (const Sample& s : reference->second) b.push_back(metric(s));
    const double ratio = median(a) / median(b);
    const auto [aLow, aHigh] = std::minmax_element(a.begin(), a.end());
    const auto [bLow, bHigh] = std::minmax_element(b.begin(), b.end());
    std::printf("  %-*s %6.3f (%.3f - %.3f)", width, target.label.c_str(),
                ratio, *aLow / *bHigh, *aHigh / *bLow);
    if (target.limit > 0) {
      const bool ok = ratio <= target.limit;
      (ok ? met : missed)++;
      std::printf("  target <= %.2f: %s", target.limit, ok ? "met" : "NOT MET");
    }
    std::printf("\n");
  }
  std::printf("Targets met: %d of %d\n", met, met + missed);
}

void SummaryReporter::printNoise() const {
  std::vector<std::pair<double, std::string>> spreads;
  for (const auto& entry : samples_) {
    std::vector<double> times;
    for (const Sample& s : entry.second) times.push_back(s.nanoseconds);
    if (times.size() < 2) continue;
    const auto [low, high] = std::minmax_element(times.begin(), times.end());
    spreads.emplace_back((*high - *low) / median(times), entry.first);
  }
  if (spreads.empty()) return;
  std::sort(spreads.begin(), spreads.end());
  std::vector<double> values;
  for (const auto& s : spreads) values.push_back(s.first);
  std::printf(
      "\nNoise: the repetitions of one benchmark spread (max - min) / median "
      "by %.0f%% typically (median over benchmarks), %.0f%% to %.0f%% "
      "overall; widest: %s.\n",
      100 * median(values), 100 * spreads.front().first,
      100 * spreads.back().first, spreads.back().second.c_str());
}

}  // namespace bench
