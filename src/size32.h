// Buffer sizes that the engine defines as signed 32-bit products. A product
// whose 32-bit value is not the true one would allocate less than the code
// then writes, so such a size is refused as array new refuses a bad length.
#ifndef PAVONA_SRC_SIZE32_H_
#define PAVONA_SRC_SIZE32_H_

#include <cstdint>
#include <new>

namespace pavona {

// `exact` as an int32, or std::bad_array_new_length if it does not fit.
inline int32_t exactInt32(int64_t exact) {
  if (exact < INT32_MIN || exact > INT32_MAX) {
    throw std::bad_array_new_length();
  }
  return static_cast<int32_t>(exact);
}

}  // namespace pavona

#endif  // PAVONA_SRC_SIZE32_H_
