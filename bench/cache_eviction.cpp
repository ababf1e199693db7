#include "bench/cache_eviction.h"

#include <cstdint>

#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace bench {

namespace {

// The start of the cache line that holds `p`.
const char* lineStart(const void* p, std::uintptr_t line) {
  return reinterpret_cast<const char*>(reinterpret_cast<std::uintptr_t>(p) &
                                       ~(line - 1));
}

#if defined(__x86_64__)

constexpr std::uintptr_t kLine = 64;

// clflushopt is an order of magnitude faster than clflush over a whole
// frame: the flushes of different lines may overlap.
__attribute__((target("clflushopt"))) void flushOpt(const char* first,
                                                    const char* last) {
  for (const char* p = first; p < last; p += kLine)
    _mm_clflushopt(const_cast<char*>(p));
  _mm_mfence();
}

void flushPlain(const char* first, const char* last) {
  for (const char* p = first; p < last; p += kLine) _mm_clflush(p);
  _mm_mfence();
}

bool hasClflushopt() {
  unsigned eax, ebx, ecx, edx;
  if (!__get_cpuid_count(7, 0, &eax, &ebx, &ecx, &edx)) return false;
  return (ebx & bit_CLFLUSHOPT) != 0;
}

#endif

}  // namespace

void evictFromCaches(const void* data, std::size_t bytes) {
  const char* last = static_cast<const char*>(data) + bytes;
#if defined(__x86_64__)
  const char* first = lineStart(data, kLine);
  static const bool optimised = hasClflushopt();
  if (optimised) {
    flushOpt(first, last);
  } else {
    flushPlain(first, last);
  }
#elif defined(__aarch64__)
  // Clean and invalidate to the point of coherency, a line at a time of the
  // smallest data-cache line the core reports; Linux lets user space do it.
  std::uint64_t ctr;
  asm volatile("mrs %0, ctr_el0" : "=r"(ctr));
  const std::uintptr_t line = std::uintptr_t{4} << ((ctr >> 16) & 0xF);
  const char* first = lineStart(data, line);
  for (const char* p = first; p < last; p += line) {
    asm volatile("dc civac, %0" : : "r"(p) : "memory");
  }
  asm volatile("dsb ish" : : : "memory");
#else
#error "no cache eviction for this architecture"
#endif
}

}  // namespace bench
