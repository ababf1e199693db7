// What every fuzz target needs: planes allocated to exactly the bytes a
// record describes, so that any access outside them is caught, and a read
// of every output byte that a memory checker sees as a use.
#ifndef PAVONA_FUZZ_FUZZ_SUPPORT_H_
#define PAVONA_FUZZ_FUZZ_SUPPORT_H_

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace pavona::fuzz {

// `rows` rows of `rowBytes` bytes, row r at first + r × stride (stride in
// bytes, any sign). The allocation spans exactly the lowest row's first
// byte to the highest row's last byte; `first` points at row 0.
class Plane {
 public:
  Plane(int64_t rows, int64_t rowBytes, int64_t stride) {
    int64_t low = 0;
    int64_t high = 0;
    if (rows > 0 && rowBytes > 0) {
      const int64_t last = (rows - 1) * stride;
      low = std::min<int64_t>(0, last);
      high = std::max<int64_t>(0, last) + rowBytes;
    }
    size_ = static_cast<size_t>(high - low);
    bytes_.reset(new uint8_t[size_]);
    first_ = bytes_.get() - low;
  }

  uint8_t* first() const { return first_; }
  uint8_t* bytes() const { return bytes_.get(); }
  size_t size() const { return size_; }

 private:
  std::unique_ptr<uint8_t[]> bytes_;
  uint8_t* first_;
  size_t size_;
};

// A stride in bytes for rows of `rowBytes`: packed (0), padded by up to
// `maxPad` samples of `sample` bytes, or the same padded rows bottom-up.
inline int32_t pickStride(FuzzedDataProvider& in, int32_t rowBytes, int sample,
                          int maxPad) {
  const int32_t pitch =
      rowBytes + sample * in.ConsumeIntegralInRange(0, maxPad);
  switch (in.ConsumeIntegralInRange(0, 2)) {
    case 0:
      return 0;
    case 1:
      return pitch;
    default:
      return -pitch;
  }
}

// Fills `size` bytes from a generator seeded by the input: a flat value,
// noise, or a few large patches, so that clustering sees every shape.
inline void fillBytes(FuzzedDataProvider& in, uint8_t* bytes, size_t size) {
  const int kind = in.ConsumeIntegralInRange(0, 2);
  uint32_t state = in.ConsumeIntegral<uint32_t>();
  const uint8_t flat = static_cast<uint8_t>(state);
  for (size_t i = 0; i < size; ++i) {
    if (kind == 0) {
      bytes[i] = flat;
    } else {
      if (kind == 1 || i % 4096 == 0) state = state * 1664525u + 1013904223u;
      bytes[i] = static_cast<uint8_t>(state >> 24);
    }
  }
}

// Folds every byte into a value that decides a branch: a byte that was never
// written is reported by a memory checker at that branch.
inline void readEveryByte(const void* data, size_t size) {
  const uint8_t* bytes = static_cast<const uint8_t*>(data);
  uint32_t hash = 2166136261u;
  for (size_t i = 0; i < size; ++i) hash = (hash ^ bytes[i]) * 16777619u;
  static volatile uint32_t sink;
  if (hash & 1u) sink = sink + 1;
}

// Stops the run with a message the fuzzer keeps beside the input.
[[noreturn]] inline void fail(const char* what) {
  std::fprintf(stderr, "fuzz check failed: %s\n", what);
  std::abort();
}

}  // namespace pavona::fuzz

#endif  // PAVONA_FUZZ_FUZZ_SUPPORT_H_
