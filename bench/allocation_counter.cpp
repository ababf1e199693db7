// The replaced global operator new: malloc plus two relaxed counters, cheap
// enough to stay installed for every benchmark.
#include "bench/allocation_counter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

std::atomic<uint64_t> gCalls{0};
std::atomic<uint64_t> gBytes{0};

void* counted(std::size_t size, std::size_t alignment) {
  gCalls.fetch_add(1, std::memory_order_relaxed);
  gBytes.fetch_add(size, std::memory_order_relaxed);
  if (size == 0) size = 1;
  if (alignment <= alignof(std::max_align_t)) return std::malloc(size);
  // aligned_alloc wants a size that is a multiple of the alignment.
  return std::aligned_alloc(alignment,
                            (size + alignment - 1) / alignment * alignment);
}

void* countedOrThrow(std::size_t size, std::size_t alignment) {
  void* p = counted(size, alignment);
  if (p == nullptr) throw std::bad_alloc();
  return p;
}

constexpr std::size_t kDefault = alignof(std::max_align_t);

}  // namespace

namespace bench {

Allocations allocationsSoFar() {
  return {gCalls.load(std::memory_order_relaxed),
          gBytes.load(std::memory_order_relaxed)};
}

}  // namespace bench

void* operator new(std::size_t size) { return countedOrThrow(size, kDefault); }
void* operator new[](std::size_t size) {
  return countedOrThrow(size, kDefault);
}
void* operator new(std::size_t size, std::align_val_t al) {
  return countedOrThrow(size, static_cast<std::size_t>(al));
}
void* operator new[](std::size_t size, std::align_val_t al) {
  return countedOrThrow(size, static_cast<std::size_t>(al));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return counted(size, kDefault);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return counted(size, kDefault);
}
void* operator new(std::size_t size, std::align_val_t al,
                   const std::nothrow_t&) noexcept {
  return counted(size, static_cast<std::size_t>(al));
}
void* operator new[](std::size_t size, std::align_val_t al,
                     const std::nothrow_t&) noexcept {
  return counted(size, static_cast<std::size_t>(al));
}

void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }
void operator delete(void* p, std::align_val_t) noexcept { std::free(p); }
void operator delete[](void* p, std::align_val_t) noexcept { std::free(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept {
  std::free(p);
}
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept {
  std::free(p);
}
void operator delete(void* p, std::align_val_t,
                     const std::nothrow_t&) noexcept {
  std::free(p);
}
void operator delete[](void* p, std::align_val_t,
                       const std::nothrow_t&) noexcept {
  std::free(p);
}
