// Signed 32-bit arithmetic that wraps around as the machine's registers do.
// Some offsets are defined as 32-bit products; forming them in uint32_t keeps
// the wrap-around well defined instead of undefined signed overflow.
#ifndef ZEL_CPP_CORE_WRAP32_H_
#define ZEL_CPP_CORE_WRAP32_H_

#include <cstdint>

namespace zel::cpp {

inline int32_t mulWrap32(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) *
                              static_cast<uint32_t>(b));
}

inline int32_t negWrap32(int32_t a) {
  return static_cast<int32_t>(0u - static_cast<uint32_t>(a));
}

}  // namespace zel::cpp

#endif  // ZEL_CPP_CORE_WRAP32_H_
