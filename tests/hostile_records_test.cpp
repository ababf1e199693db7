// Records a host should never send, through the entry table: init sizes
// across the whole int32 range, frame records with every field at an
// extreme, and allocations that fail at every point of a call. Nothing may
// crash, read outside a plane, leak, or leave a handle unusable.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <string>

#include "api/pavona_host.h"
#include "tests/support/capture.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/frames.h"
#include "tests/support/host_records.h"

namespace {

using pavona::testing::captureOutput;
using pavona::testing::FailingAllocations;
using pavona::testing::Frame;
using pavona::testing::Handle;
using pavona::testing::initRecord;
using pavona::testing::linkedTable;
using pavona::testing::liveAllocations;
using pavona::testing::makeFrame8;
using ::testing::HasSubstr;

// Every palette float set to a bit pattern no engine writes.
ProcessParamData untouchedRecord(int32_t colorNum, uint8_t showPalette = 0) {
  ProcessParamData param;
  std::memset(&param, 0xEE, sizeof param);
  param.colorNum = colorNum;
  param.showPalette = showPalette;
  return param;
}

bool paletteUntouched(const ProcessParamData& param) {
  const ProcessParamData fresh = untouchedRecord(param.colorNum);
  return std::memcmp(param.palette, fresh.palette, sizeof param.palette) == 0;
}

bool samePalette(const ProcessParamData& a, const ProcessParamData& b) {
  return std::memcmp(a.palette, b.palette, sizeof a.palette) == 0;
}

enum Thrown { kNothing, kBadAlloc, kBadLength };

struct Ending {
  Thrown thrown = kNothing;
  int64_t leaked = 0;  // blocks left behind by the call
  std::string err;
};

// `call` with its console lines captured, under an allocator that fails
// the `nth` allocation and every request over `maxBytes` (0: never).
Ending runFailing(int64_t nth, size_t maxBytes,
                  const std::function<void()>& call) {
  Ending run;
  run.err = captureOutput([&] {
              const int64_t before = liveAllocations();
              try {
                FailingAllocations failing(nth, maxBytes);
                call();
              } catch (const std::bad_array_new_length&) {
                run.thrown = kBadLength;
              } catch (const std::bad_alloc&) {
                run.thrown = kBadAlloc;
              }
              run.leaked = liveAllocations() - before;
            }).err;
  return run;
}

constexpr char kResizeFailed[] = "Pavona_SDK resize_v00 process failed!";
constexpr char kUnsupported[] = "Pavona_SDK preparePoints unsupported";

TEST(HostileRecords, InitSizesEndAsDesigned) {
  // Refused: a handle whose frames fail in the resize. Too large:
  // std::bad_array_new_length out of algoInitHandle. Asked for: a size that
  // fits but needs more than the 64 MiB the allocator here gives.
  enum Outcome { kProcessed, kRefused, kTooLarge, kAskedFor };
  // Working size w = (width / 32) & ~1, h = (height / 32) & ~1; the working
  // frame is (3 w h / 2) bytes a sample, a 32-bit product that must not wrap.
  const struct {
    int32_t width, height;
    IMAGE_FORMAT_TYPE format;
    int32_t widthInBytes;
    Outcome outcome;
  } cases[] = {
      {0, 0, IMAGE_FORMAT_NV21, 0, kRefused},
      {63, 63, IMAGE_FORMAT_NV21, 0, kRefused},    // below one pixel pair
      {64, 64, IMAGE_FORMAT_NV21, 0, kProcessed},  // 2 x 2, the smallest
      // 10-bit counted in bytes: 2 x 2, then halved to zero.
      {128, 64, IMAGE_FORMAT_YUV420SP_10BIT, 1, kProcessed},
      {64, 64, IMAGE_FORMAT_YUV420SP_10BIT, 1, kRefused},
      {-64, -64, IMAGE_FORMAT_NV21, 0, kRefused},  // -2 x -2, product > 0
      {-64, 64, IMAGE_FORMAT_NV21, 0, kTooLarge},
      {640, -480, IMAGE_FORMAT_YUV420SP_10BIT, 0, kTooLarge},
      {INT_MIN, INT_MIN, IMAGE_FORMAT_NV21, 0, kTooLarge},
      {INT_MAX, INT_MAX, IMAGE_FORMAT_NV21, 0, kTooLarge},
      {INT_MIN, INT_MAX, IMAGE_FORMAT_YUV420SP_10BIT, 0, kTooLarge},
      // 65536 x 65536: 3 w h is 3 x 2^32, which wraps to exactly 0.
      {2097152, 2097152, IMAGE_FORMAT_NV21, 0, kTooLarge},
      // 65536 x 21846: 3 w h is 2^32 + 131072, which wraps to 131072.
      {2097152, 699072, IMAGE_FORMAT_NV21, 0, kTooLarge},
      // The largest size: 349567 / 32 = 10923, so 65536 x 10922, and
      // 3 w h = 2147352576 <= INT_MAX, buffers of 10 GB. One step beyond,
      // 65536 x 10924: 3 w h is 2147745792, just past INT_MAX.
      {2097152, 349567, IMAGE_FORMAT_NV21, 0, kAskedFor},
      {2097152, 349568, IMAGE_FORMAT_NV21, 0, kTooLarge},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.width << " x " << c.height);
    InitParamData init =
        initRecord(c.width, c.height, c.format, c.widthInBytes);
    Frame frame = c.format == IMAGE_FORMAT_YUV420SP_10BIT
                      ? pavona::testing::makeFrame10(640, 480, 1)
                      : makeFrame8(IMAGE_FORMAT_NV21, 640, 480, 1);
    ProcessParamData param = untouchedRecord(4);
    void* const untouched = reinterpret_cast<void*>(0x5a5a);
    void* handle = untouched;
    const Ending run = runFailing(0, 64 << 20, [&] {
      EXPECT_EQ(linkedTable().algoInitHandle(&handle, &init), 0);
      linkedTable().singleProcessImage(handle, &frame.image, &param, nullptr);
      linkedTable().releaseHandle(handle, nullptr);
    });
    const bool threw = c.outcome == kTooLarge || c.outcome == kAskedFor;
    EXPECT_EQ(run.thrown, c.outcome == kTooLarge   ? kBadLength
                          : c.outcome == kAskedFor ? kBadAlloc
                                                   : kNothing);
    EXPECT_EQ(run.leaked, 0);
    EXPECT_EQ(handle == untouched, threw);
    EXPECT_EQ(paletteUntouched(param), c.outcome != kProcessed);
    if (!threw) {
      EXPECT_EQ(run.err.find(kResizeFailed) != std::string::npos,
                c.outcome == kRefused);
      EXPECT_EQ(run.err.empty(), c.outcome == kProcessed);
    }
  }
}

TEST(HostileRecords, AllocationFailureAnywhereInInitPropagatesAndLeaksNothing) {
  InitParamData init = initRecord(4000, 3000);
  int failures = 0;
  for (int64_t nth = 1;; ++nth) {
    void* handle = nullptr;
    const Ending run = runFailing(nth, 0, [&] {
      linkedTable().algoInitHandle(&handle, &init);
      linkedTable().releaseHandle(handle, nullptr);
    });
    EXPECT_EQ(run.leaked, 0) << "allocation " << nth;
    if (run.thrown == kNothing) break;
    ++failures;
    EXPECT_EQ(handle, nullptr) << "allocation " << nth;
  }
  // The facade, the engine, its three buffers and the k-means engine.
  EXPECT_GE(failures, 6);
}

TEST(HostileRecords, AllocationFailureAnywhereInAFrameLeavesTheHandleWorking) {
  const InitParamData init = initRecord(1280, 960);
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 1280, 960, 3);
  ProcessParamData reference = untouchedRecord(8, 1);
  Handle(linkedTable(), init).process(&frame.image, reference);
  ASSERT_FALSE(paletteUntouched(reference));

  int failures = 0;
  for (int64_t nth = 1;; ++nth) {
    const int64_t liveBefore = liveAllocations();
    Thrown thrown;
    {
      Handle handle(linkedTable(), init);
      ProcessParamData param = untouchedRecord(8, 1);
      thrown = runFailing(nth, 0, [&] {
                 linkedTable().singleProcessImage(handle.get(), &frame.image,
                                                  &param, nullptr);
               }).thrown;
      if (thrown != kNothing) {
        param = untouchedRecord(8, 1);
        handle.process(&frame.image, param);
      }
      EXPECT_TRUE(samePalette(param, reference)) << "allocation " << nth;
    }
    EXPECT_EQ(liveAllocations(), liveBefore) << "allocation " << nth;
    if (thrown == kNothing) break;
    ++failures;
  }
  // Resize tables, k-means lists, colour ranking, preview buffers.
  EXPECT_GE(failures, 5);
}

TEST(HostileRecords, FrameFieldsAtExtremesAreRefusedWithoutReadingPlanes) {
  Handle handle(linkedTable(), initRecord(640, 480));
  auto expectRefused = [&](const std::string& what, const char* message,
                           const std::function<void(Image&)>& spoil) {
    // Planes of exactly 64 x 64 samples: a read past them is caught.
    Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 64, 64, 2);
    spoil(frame.image);
    ProcessParamData param = untouchedRecord(4);
    EXPECT_THAT(handle.process(&frame.image, param).err, HasSubstr(message))
        << what;
    EXPECT_TRUE(paletteUntouched(param)) << what;
  };
  for (const int32_t v : {0, -2, 1, 63, INT_MIN, INT_MAX}) {
    const std::string value = std::to_string(v);
    expectRefused("width " + value, kResizeFailed,
                  [v](Image& i) { i.width = v; });
    expectRefused("height " + value, kResizeFailed,
                  [v](Image& i) { i.height = v; });
  }
  expectRefused("stride INT_MIN, width 0", kResizeFailed, [](Image& i) {
    i.stride = INT_MIN;
    i.width = 0;
  });
  expectRefused("stride INT_MAX, height INT_MIN", kResizeFailed, [](Image& i) {
    i.stride = INT_MAX;
    i.height = INT_MIN;
  });
  expectRefused("null luma", kResizeFailed, [](Image& i) { i.yPlane = {}; });
  expectRefused("null chroma", kResizeFailed, [](Image& i) { i.uvPlane = {}; });
  // The last: a 10-bit frame on an 8-bit handle.
  for (const int32_t f :
       {INT_MIN, -1, 7, 10, INT_MAX, int32_t{IMAGE_FORMAT_YUV420SP_10BIT}}) {
    expectRefused("format " + std::to_string(f), kUnsupported, [f](Image& i) {
      i.format = static_cast<IMAGE_FORMAT_TYPE>(f);
    });
  }
}

TEST(HostileRecords, ExtremeColourCountsAndFlagsGiveTheClampedResult) {
  Handle handle(linkedTable(), initRecord(640, 480));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 640, 480, 4);
  // Three and twenty colours seed from rand(); the same seed before each
  // call makes the clamped and the plain count comparable.
  auto run = [&](int32_t colorNum, uint8_t showPalette) {
    ProcessParamData param = untouchedRecord(colorNum, showPalette);
    std::srand(17);
    handle.process(&frame.image, param);
    return param;
  };
  for (const int32_t below : {INT_MIN, -1, 0}) {
    EXPECT_TRUE(samePalette(run(below, 0), run(3, 0))) << below;
  }
  for (const int32_t above : {21, INT_MAX}) {
    EXPECT_TRUE(samePalette(run(above, 0), run(20, 0))) << above;
  }
  EXPECT_TRUE(samePalette(run(4, 255), run(4, 0)));
  EXPECT_FALSE(paletteUntouched(run(INT_MAX, 255)));
}

// Anonymous memory reserved but not committed: only the pages the resize
// samples are ever touched, so planes of gigabytes cost a few pages. Every
// byte reads as zero.
std::shared_ptr<uint8_t> reserve(size_t bytes) {
  void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                 MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (p == MAP_FAILED) return nullptr;
  return {static_cast<uint8_t*>(p), [bytes](uint8_t* q) { munmap(q, bytes); }};
}

TEST(HostileRecords, WidestAndTallestFramesAreSampledInsideTheirPlanes) {
  Handle handle(linkedTable(), initRecord(640, 480));
  // All-zero samples convert to (0, 135, 0) wherever they are sampled.
  Frame zeros = makeFrame8(IMAGE_FORMAT_NV21, 64, 64, 0);
  std::fill(zeros.y.begin(), zeros.y.end(), 0);
  std::fill(zeros.uv.begin(), zeros.uv.end(), 0);
  ProcessParamData expected = untouchedRecord(4);
  handle.process(&zeros.image, expected);
  ASSERT_FALSE(paletteUntouched(expected));

  const struct {
    const char* name;
    int32_t width, height, stride;
  } kExtremes[] = {
      {"widest packed", INT_MAX - 1, 2, 0},
      {"tallest packed", 2, INT_MAX - 1, 0},
      {"largest stride", 64, 2, INT_MAX},
      {"largest bottom-up stride", 64, 2, -INT_MAX},
  };
  for (const auto& e : kExtremes) {
    const int64_t pitch = e.stride == 0 ? e.width : std::abs(int64_t{e.stride});
    // Row 0 of a bottom-up plane is its highest row.
    const int64_t lumaTop = (e.height - 1) * pitch;
    const int64_t chromaTop = (e.height / 2 - 1) * pitch;
    const auto y = reserve(lumaTop + e.width),
               uv = reserve(chromaTop + e.width);
    if (y == nullptr || uv == nullptr) GTEST_SKIP() << "no address space";
    Image image{};
    image.format = IMAGE_FORMAT_NV21;
    image.width = e.width;
    image.height = e.height;
    image.stride = e.stride;
    image.yPlane = y.get() + (e.stride < 0 ? lumaTop : 0);
    image.uvPlane = uv.get() + (e.stride < 0 ? chromaTop : 0);
    ProcessParamData param = untouchedRecord(4);
    EXPECT_EQ(handle.process(&image, param).err, "") << e.name;
    EXPECT_TRUE(samePalette(param, expected)) << e.name;
  }
}

TEST(HostileRecords, PreviewAtTheSizeLimitIsAskedForAndOneStepBeyondRefused) {
  // The preview canvas is (3 w + 90) x (h + 80) bytes, a 32-bit product.
  // With h = 2, w = 8729578 is the widest that fits: 2147483568 bytes, asked
  // here of an allocator with 1 GiB to give (drawing it costs 2 GiB and many
  // seconds). One step wider, w = 8729580, is 2147484060: refused as a
  // length, not wrapped into a smaller allocation.
  for (const bool fits : {true, false}) {
    const int32_t width = fits ? 8729579 * 32 + 31 : 8729580 * 32;
    const int64_t liveBefore = liveAllocations();
    {
      Handle handle(linkedTable(), initRecord(width, 64));
      Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 64, 64, 5);
      ProcessParamData param = untouchedRecord(1, 1);
      const Ending run = runFailing(0, size_t{1} << 30, [&] {
        linkedTable().singleProcessImage(handle.get(), &frame.image, &param,
                                         nullptr);
      });
      EXPECT_EQ(run.thrown, fits ? kBadAlloc : kBadLength) << width;
      if (!fits) {
        param.showPalette = 0;
        handle.process(&frame.image, param);
        EXPECT_FALSE(paletteUntouched(param)) << "without the preview it works";
      }
    }
    EXPECT_EQ(liveAllocations(), liveBefore) << width;
  }
}

}  // namespace
