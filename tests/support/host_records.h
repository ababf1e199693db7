// Host-side helpers for suites that drive the library through its entry
// table, as a camera host does.
#ifndef PAVONA_TESTS_SUPPORT_HOST_RECORDS_H_
#define PAVONA_TESTS_SUPPORT_HOST_RECORDS_H_

#include <cstdint>
#include <cstring>

#include "api/pavona_host.h"
#include "tests/support/capture.h"

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

// A handle made and released through `api` with the library's console
// lines captured, so that suites see only what they ask for.
class Handle {
 public:
  Handle(const PavonaApi& api, InitParamData init) : api_(api) {
    captureOutput([&] { api_.algoInitHandle(&handle_, &init); });
  }
  ~Handle() {
    captureOutput([&] { api_.releaseHandle(handle_, nullptr); });
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  void* get() const { return handle_; }

  // One frame; returns what the library printed meanwhile.
  CapturedOutput process(Image* image, ProcessParamData& param) {
    return captureOutput(
        [&] { api_.singleProcessImage(handle_, image, &param, nullptr); });
  }

 private:
  const PavonaApi& api_;
  void* handle_ = nullptr;
};

}  // namespace pavona::testing

#endif  // PAVONA_TESTS_SUPPORT_HOST_RECORDS_H_
