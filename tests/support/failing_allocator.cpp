#include "tests/support/failing_allocator.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace pavona::testing {
namespace {

std::atomic<int64_t> gLive{0};
std::atomic<int64_t> gSinceArmed{0};
std::atomic<int64_t> gFailNth{0};
std::atomic<size_t> gMaxBytes{0};

void* allocate(size_t size) {
  const int64_t count = ++gSinceArmed;
  const int64_t nth = gFailNth.load();
  const size_t maxBytes = gMaxBytes.load();
  if ((nth != 0 && count == nth) || (maxBytes != 0 && size > maxBytes)) {
    return nullptr;
  }
  void* block = std::malloc(size == 0 ? 1 : size);
  if (block != nullptr) ++gLive;
  return block;
}

void release(void* block) {
  if (block == nullptr) return;
  --gLive;
  std::free(block);
}

void* allocateOrThrow(size_t size) {
  void* block = allocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

int64_t liveAllocations() { return gLive.load(); }

void failAllocations(int64_t nth, size_t maxBytes) {
  gSinceArmed = 0;
  gFailNth = nth;
  gMaxBytes = maxBytes;
}

}  // namespace pavona::testing

using pavona::testing::allocate;
using pavona::testing::allocateOrThrow;
using pavona::testing::release;

void* operator new(size_t size) { return allocateOrThrow(size); }
void* operator new[](size_t size) { return allocateOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, size_t) noexcept { release(block); }
void operator delete[](void* block, size_t) noexcept { release(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept {
  release(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
  release(block);
}
