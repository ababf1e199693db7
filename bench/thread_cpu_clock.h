// CPU time of the calling thread. On a machine shared with other jobs it
// leaves out the time the thread waits to be scheduled, while stalls on
// memory still count, so cold-cache costs show in full.
#ifndef PAVONA_BENCH_THREAD_CPU_CLOCK_H_
#define PAVONA_BENCH_THREAD_CPU_CLOCK_H_

#include <ctime>

namespace bench {

inline double threadCpuSeconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) +
         1e-9 * static_cast<double>(now.tv_nsec);
}

}  // namespace bench

#endif  // PAVONA_BENCH_THREAD_CPU_CLOCK_H_
