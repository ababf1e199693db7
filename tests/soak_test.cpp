// A host runs the library for hours: tens of thousands of frames on one
// handle, then a fresh handle, must leave the process's resident memory
// where it was. By default a short run; PAVONA_SOAK_FRAMES sets the frames
// each handle processes (make soak runs the long one). Under
// AddressSanitizer the quarantine of freed blocks grows the resident set by
// design, so there the numbers are only reported and leaks are
// LeakSanitizer's to find.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "api/pavona_host.h"
#include "tests/support/capture.h"
#include "tests/support/frames.h"
#include "tests/support/host_records.h"

#if defined(__SANITIZE_ADDRESS__)
#define PAVONA_SOAK_UNDER_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PAVONA_SOAK_UNDER_ASAN 1
#endif
#endif

namespace {

using pavona::testing::captureOutput;
using pavona::testing::Frame;
using pavona::testing::initRecord;
using pavona::testing::linkedTable;
using pavona::testing::makeFrame10;
using pavona::testing::makeFrame8;

// Allocator bookkeeping and stdio buffers move the resident set by a few
// pages; a leak of even 16 bytes a frame over the long run is far above it.
constexpr long kToleranceBytes = 256 * 1024;

long residentBytes() {
  std::ifstream statm("/proc/self/statm");
  long size = 0, resident = 0;
  statm >> size >> resident;
  return resident * sysconf(_SC_PAGESIZE);
}

// Frames of every kind a handle meets: its own format and size, other
// sizes, the other chroma order, and a frame it refuses (odd width).
std::vector<Frame> scenes(bool tenBit) {
  std::vector<Frame> frames;
  for (int seed = 0; seed < 3; ++seed) {
    frames.push_back(tenBit ? makeFrame10(640, 480, seed)
                            : makeFrame8(IMAGE_FORMAT_NV21, 640, 480, seed));
    frames.push_back(tenBit ? makeFrame10(320, 240, seed)
                            : makeFrame8(IMAGE_FORMAT_NV12, 320, 240, seed));
    frames.push_back(makeFrame8(IMAGE_FORMAT_NV21, 1280, 720, seed));
  }
  frames.push_back(makeFrame8(IMAGE_FORMAT_NV21, 640, 480, 9));
  frames.back().image.width = 639;
  return frames;
}

// Colour counts 1 to 20 (most seeded from rand()), the preview every third
// frame.
void process(void* handle, std::vector<Frame>& frames, long count, long first) {
  for (long f = first; f < first + count; ++f) {
    ProcessParamData param{};
    param.colorNum = static_cast<int32_t>(f % 20 + 1);
    param.showPalette = f % 3 == 0;
    linkedTable().singleProcessImage(handle, &frames[f % frames.size()].image,
                                     &param, nullptr);
  }
}

TEST(Soak, ResidentMemoryDoesNotGrowOverManyFramesAndHandles) {
  const char* text = std::getenv("PAVONA_SOAK_FRAMES");
  const long frames =
      text != nullptr && std::atol(text) > 0 ? std::atol(text) : 2000;
  std::vector<Frame> eightBit = scenes(false), tenBit = scenes(true);
  long start = 0, end = 0;
  captureOutput([&] {
    linkedTable().setLogStatus(0);
    void* handle = nullptr;
    InitParamData init = initRecord(640, 480, IMAGE_FORMAT_NV21);
    linkedTable().algoInitHandle(&handle, &init);
    process(handle, eightBit, 200, 0);
    start = residentBytes();
    process(handle, eightBit, frames, 200);
    linkedTable().releaseHandle(handle, nullptr);
    init = initRecord(640, 480, IMAGE_FORMAT_YUV420SP_10BIT);
    linkedTable().algoInitHandle(&handle, &init);
    process(handle, tenBit, frames, 0);
    end = residentBytes();
    linkedTable().releaseHandle(handle, nullptr);
    linkedTable().setLogStatus(1);
  });
  std::printf(
      "soak: %ld frames on each of two handles; resident %ld KiB at "
      "start, %ld KiB at end\n",
      frames, start / 1024, end / 1024);
#ifndef PAVONA_SOAK_UNDER_ASAN
  EXPECT_LE(end - start, kToleranceBytes);
#endif
}

}  // namespace
