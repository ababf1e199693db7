// Counts every allocation made through the global operator new of this
// program (the library's objects are linked in, so theirs too).
#ifndef PAVONA_BENCH_ALLOCATION_COUNTER_H_
#define PAVONA_BENCH_ALLOCATION_COUNTER_H_

#include <cstdint>

namespace bench {

struct Allocations {
  uint64_t calls;
  uint64_t bytes;
};

// Allocations since the program started.
Allocations allocationsSoFar();

}  // namespace bench

#endif  // PAVONA_BENCH_ALLOCATION_COUNTER_H_
