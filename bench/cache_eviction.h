// Makes memory cold: what a fresh camera frame is when the host hands it in.
#ifndef PAVONA_BENCH_CACHE_EVICTION_H_
#define PAVONA_BENCH_CACHE_EVICTION_H_

#include <cstddef>

namespace bench {

// Writes back and drops every cache line of [data, data + bytes) from every
// cache level, and waits until that is done.
void evictFromCaches(const void* data, std::size_t bytes);

}  // namespace bench

#endif  // PAVONA_BENCH_CACHE_EVICTION_H_
