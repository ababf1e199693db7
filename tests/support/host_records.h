// Host-side helpers for suites that drive the library through its entry
// table, as a camera host does.
#ifndef PAVONA_TESTS_SUPPORT_HOST_RECORDS_H_
#define PAVONA_TESTS_SUPPORT_HOST_RECORDS_H_

#include <cstdint>
#include <cstring>

#include "api/pavona_host.h"

namespace pavona::testing {

// The table of the library linked into the test, filled once.
inline const PavonaApi& linkedTable() {
  static const PavonaApi api = [] {
    PavonaApi filled;
    std::memset(&filled, 0, sizeof filled);
    get_algo_api(&filled);
    return filled;
  }();
  return api;
}

inline InitParamData initRecord(int32_t width, int32_t height,
                                IMAGE_FORMAT_TYPE format = IMAGE_FORMAT_NV21,
                                int32_t widthInBytes = 0) {
  InitParamData init;
  std::memset(&init, 0, sizeof init);
  init.width = width;
  init.height = height;
  init.widthInBytes = widthInBytes;
  init.format = format;
  return init;
}

}  // namespace pavona::testing

#endif  // PAVONA_TESTS_SUPPORT_HOST_RECORDS_H_
