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
#include <new>
#include <vector>

#include "api/pavona_host.h"
#include "tests/support/capture.h"
#include "tests/support/failing_allocator.h"
#include "tests/support/frames.h"
#include "tests/support/host_records.h"

namespace {

using pavona::testing::allocationsSinceArmed;
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
ProcessParamData untouchedRecord(int32_t colorNum) {
  ProcessParamData param;
  std::memset(&param, 0xEE, sizeof param);
  param.colorNum = colorNum;
  param.showPalette = 0;
  return param;
}

bool paletteUntouched(const ProcessParamData& param) {
  const ProcessParamData fresh = untouchedRecord(param.colorNum);
  return std::memcmp(param.palette, fresh.palette, sizeof param.palette) == 0;
}

bool samePalette(const ProcessParamData& a, const ProcessParamData& b) {
  return std::memcmp(a.palette, b.palette, sizeof a.palette) == 0;
}

enum class Outcome {
  kFramesProcessed,  // a handle whose frames give palettes
  kFramesRefused,    // a handle whose frames fail in the resize with 769
  kInitThrows,       // std::bad_array_new_length out of algoInitHandle
};

struct InitCase {
  const char* name;
  int32_t width;
  int32_t height;
  IMAGE_FORMAT_TYPE format;
  int32_t widthInBytes;
  Outcome outcome;
};

// Working size w = (width / 32) & ~1, h = (height / 32) & ~1; the working
// frame is (3 w h / 2) bytes a sample, a 32-bit product that must not wrap.
const InitCase kInitCases[] = {
    {"zero", 0, 0, IMAGE_FORMAT_NV21, 0, Outcome::kFramesRefused},
    {"below one working pixel pair", 63, 63, IMAGE_FORMAT_NV21, 0,
     Outcome::kFramesRefused},
    {"smallest working frame, 2 x 2", 64, 64, IMAGE_FORMAT_NV21, 0,
     Outcome::kFramesProcessed},
    {"10-bit counted in bytes, 2 x 2", 128, 64, IMAGE_FORMAT_YUV420SP_10BIT, 1,
     Outcome::kFramesProcessed},
    {"10-bit counted in bytes, halved to zero", 64, 64,
     IMAGE_FORMAT_YUV420SP_10BIT, 1, Outcome::kFramesRefused},
    {"negative both, product positive (-2 x -2)", -64, -64, IMAGE_FORMAT_NV21,
     0, Outcome::kFramesRefused},
    {"negative width only, product negative", -64, 64, IMAGE_FORMAT_NV21, 0,
     Outcome::kInitThrows},
    {"negative height only, product negative", 640, -480,
     IMAGE_FORMAT_YUV420SP_10BIT, 0, Outcome::kInitThrows},
    {"INT_MIN both", INT_MIN, INT_MIN, IMAGE_FORMAT_NV21, 0,
     Outcome::kInitThrows},
    {"INT_MAX both", INT_MAX, INT_MAX, IMAGE_FORMAT_NV21, 0,
     Outcome::kInitThrows},
    {"INT_MIN by INT_MAX", INT_MIN, INT_MAX, IMAGE_FORMAT_YUV420SP_10BIT, 0,
     Outcome::kInitThrows},
    // 65536 x 65536: 3 w h is 3 x 2^32, which wraps to exactly 0.
    {"3 w h wraps to zero", 2097152, 2097152, IMAGE_FORMAT_NV21, 0,
     Outcome::kInitThrows},
    // 65536 x 21846: 3 w h is 2^32 + 131072, which wraps to 131072.
    {"3 w h wraps to a small positive size", 2097152, 699072, IMAGE_FORMAT_NV21,
     0, Outcome::kInitThrows},
    // 65536 x 10924: 3 w h is 2147745792, just past INT_MAX; one step
    // beyond the largest size init takes (InitAtTheSizeLimit...).
    {"3 w h just past INT_MAX", 2097152, 349568, IMAGE_FORMAT_NV21, 0,
     Outcome::kInitThrows},
};

void checkInitCase(const InitCase& c) {
  InitParamData init = initRecord(c.width, c.height, c.format, c.widthInBytes);
  Frame frame = c.format == IMAGE_FORMAT_YUV420SP_10BIT
                    ? pavona::testing::makeFrame10(640, 480, 1)
                    : makeFrame8(IMAGE_FORMAT_NV21, 640, 480, 1);
  ProcessParamData param = untouchedRecord(4);
  void* const untouched = reinterpret_cast<void*>(0x5a5a);
  void* handle = untouched;
  int64_t liveBefore = 0;
  int64_t liveAfter = 0;
  bool threw = false;
  bool otherFailure = false;
  const auto out = captureOutput([&] {
    liveBefore = liveAllocations();
    try {
      EXPECT_EQ(linkedTable().algoInitHandle(&handle, &init), 0);
      linkedTable().singleProcessImage(handle, &frame.image, &param, nullptr);
      linkedTable().releaseHandle(handle, nullptr);
    } catch (const std::bad_array_new_length&) {
      threw = true;
    } catch (const std::bad_alloc&) {
      otherFailure = true;
    }
    liveAfter = liveAllocations();
  });
  EXPECT_FALSE(otherFailure) << "a size was allocated instead of refused";
  EXPECT_EQ(liveAfter, liveBefore) << "something was left allocated";
  if (c.outcome == Outcome::kInitThrows) {
    EXPECT_TRUE(threw);
    EXPECT_EQ(handle, untouched);
    return;
  }
  ASSERT_FALSE(threw);
  EXPECT_NE(handle, untouched);
  if (c.outcome == Outcome::kFramesRefused) {
    EXPECT_TRUE(paletteUntouched(param));
    EXPECT_THAT(out.err, HasSubstr("Pavona_SDK resize_v00 process failed!"));
  } else {
    EXPECT_FALSE(paletteUntouched(param));
    EXPECT_EQ(out.err, "");
  }
}

TEST(HostileRecords, InitSizesEndAsDesigned) {
  for (const InitCase& c : kInitCases) {
    SCOPED_TRACE(c.name);
    checkInitCase(c);
  }
}

TEST(HostileRecords, InitAtTheSizeLimitAsksForMemoryAndLeaksNothing) {
  // The largest init size with w = 65536: 349567 / 32 = 10923, h = 10922,
  // 3 w h = 2147352576 <= INT_MAX. Its buffers, 10 GB, are more than a test
  // may take: an allocator with 64 MiB to give tells a size that is asked
  // for (plain bad_alloc) from one refused as a length.
  InitParamData init = initRecord(2097152, 349567);
  void* handle = nullptr;
  const int64_t liveBefore = liveAllocations();
  bool threw = false;
  bool refusedAsLength = false;
  captureOutput([&] {
    FailingAllocations full(0, 64 << 20);
    try {
      linkedTable().algoInitHandle(&handle, &init);
    } catch (const std::bad_array_new_length&) {
      refusedAsLength = true;
    } catch (const std::bad_alloc&) {
      threw = true;
    }
  });
  EXPECT_FALSE(refusedAsLength) << "the size fits; only memory is short";
  EXPECT_TRUE(threw);
  EXPECT_EQ(handle, nullptr);
  EXPECT_EQ(liveAllocations(), liveBefore);
}

TEST(HostileRecords, AllocationFailureAnywhereInInitPropagatesAndLeaksNothing) {
  InitParamData init = initRecord(4000, 3000);
  int failures = 0;
  for (int64_t nth = 1;; ++nth) {
    void* handle = nullptr;
    const int64_t liveBefore = liveAllocations();
    bool threw = false;
    captureOutput([&] {
      FailingAllocations failing(nth, 0);
      try {
        linkedTable().algoInitHandle(&handle, &init);
      } catch (const std::bad_alloc&) {
        threw = true;
      }
    });
    if (!threw) {
      captureOutput([&] { linkedTable().releaseHandle(handle, nullptr); });
      EXPECT_EQ(liveAllocations(), liveBefore);
      break;
    }
    ++failures;
    EXPECT_EQ(handle, nullptr) << "allocation " << nth;
    EXPECT_EQ(liveAllocations(), liveBefore) << "allocation " << nth;
  }
  // The facade, the engine, its three buffers and the k-means engine.
  EXPECT_GE(failures, 6);
}

TEST(HostileRecords, AllocationFailureAnywhereInAFrameLeavesTheHandleWorking) {
  const InitParamData init = initRecord(1280, 960);
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 1280, 960, 3);
  ProcessParamData reference = untouchedRecord(8);
  reference.showPalette = 1;
  {
    Handle clean(linkedTable(), init);
    clean.process(&frame.image, reference);
  }
  ASSERT_FALSE(paletteUntouched(reference));

  int failures = 0;
  for (int64_t nth = 1;; ++nth) {
    const int64_t liveBefore = liveAllocations();
    bool threw = false;
    {
      Handle handle(linkedTable(), init);
      ProcessParamData param = untouchedRecord(8);
      param.showPalette = 1;
      captureOutput([&] {
        FailingAllocations failing(nth, 0);
        try {
          linkedTable().singleProcessImage(handle.get(), &frame.image, &param,
                                           nullptr);
        } catch (const std::bad_alloc&) {
          threw = true;
        }
      });
      if (threw) {
        ProcessParamData again = untouchedRecord(8);
        again.showPalette = 1;
        handle.process(&frame.image, again);
        EXPECT_TRUE(samePalette(again, reference)) << "allocation " << nth;
      } else {
        EXPECT_TRUE(samePalette(param, reference));
      }
    }
    EXPECT_EQ(liveAllocations(), liveBefore) << "allocation " << nth;
    if (!threw) break;
    ++failures;
  }
  // Resize tables, k-means lists, colour ranking, preview buffers.
  EXPECT_GE(failures, 5);
}

struct FrameCase {
  const char* name;
  void (*mutate)(Image&);
  const char* message;
};

constexpr char kResizeFailed[] = "Pavona_SDK resize_v00 process failed!";
constexpr char kUnsupported[] = "Pavona_SDK preparePoints unsupported";

const FrameCase kRefusedFrames[] = {
    {"width 0", [](Image& i) { i.width = 0; }, kResizeFailed},
    {"width -2", [](Image& i) { i.width = -2; }, kResizeFailed},
    {"width 1", [](Image& i) { i.width = 1; }, kResizeFailed},
    {"width 63", [](Image& i) { i.width = 63; }, kResizeFailed},
    {"width INT_MIN", [](Image& i) { i.width = INT_MIN; }, kResizeFailed},
    {"width INT_MAX", [](Image& i) { i.width = INT_MAX; }, kResizeFailed},
    {"height 0", [](Image& i) { i.height = 0; }, kResizeFailed},
    {"height -2", [](Image& i) { i.height = -2; }, kResizeFailed},
    {"height 1", [](Image& i) { i.height = 1; }, kResizeFailed},
    {"height INT_MIN", [](Image& i) { i.height = INT_MIN; }, kResizeFailed},
    {"height INT_MAX", [](Image& i) { i.height = INT_MAX; }, kResizeFailed},
    {"stride INT_MIN, width 0",
     [](Image& i) {
       i.stride = INT_MIN;
       i.width = 0;
     },
     kResizeFailed},
    {"stride INT_MAX, height INT_MIN",
     [](Image& i) {
       i.stride = INT_MAX;
       i.height = INT_MIN;
     },
     kResizeFailed},
    {"null luma plane", [](Image& i) { i.yPlane = nullptr; }, kResizeFailed},
    {"null chroma plane", [](Image& i) { i.uvPlane = nullptr; }, kResizeFailed},
    {"format INT_MIN",
     [](Image& i) { i.format = static_cast<IMAGE_FORMAT_TYPE>(INT_MIN); },
     kUnsupported},
    {"format -1",
     [](Image& i) { i.format = static_cast<IMAGE_FORMAT_TYPE>(-1); },
     kUnsupported},
    {"format 7", [](Image& i) { i.format = static_cast<IMAGE_FORMAT_TYPE>(7); },
     kUnsupported},
    {"format 10", [](Image& i) { i.format = IMAGE_FORMAT_RESERVED10; },
     kUnsupported},
    {"format INT_MAX",
     [](Image& i) { i.format = static_cast<IMAGE_FORMAT_TYPE>(INT_MAX); },
     kUnsupported},
    {"10-bit frame on an 8-bit handle",
     [](Image& i) { i.format = IMAGE_FORMAT_YUV420SP_10BIT; }, kUnsupported},
};

TEST(HostileRecords, FrameFieldsAtExtremesAreRefusedWithoutReadingPlanes) {
  Handle handle(linkedTable(), initRecord(640, 480));
  for (const FrameCase& c : kRefusedFrames) {
    // Planes of exactly 64 x 64 samples: a read past them is caught.
    Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 64, 64, 2);
    c.mutate(frame.image);
    ProcessParamData param = untouchedRecord(4);
    const auto out = handle.process(&frame.image, param);
    EXPECT_TRUE(paletteUntouched(param)) << c.name;
    EXPECT_THAT(out.err, HasSubstr(c.message)) << c.name;
  }
}

TEST(HostileRecords, ExtremeColourCountsAndFlagsGiveTheClampedResult) {
  Handle handle(linkedTable(), initRecord(640, 480));
  Frame frame = makeFrame8(IMAGE_FORMAT_NV21, 640, 480, 4);
  // Three and twenty colours seed from rand(); the same seed before each
  // call makes the clamped and the plain count comparable.
  auto run = [&](int32_t colorNum, uint8_t showPalette) {
    ProcessParamData param = untouchedRecord(colorNum);
    param.showPalette = showPalette;
    std::srand(17);
    handle.process(&frame.image, param);
    return param;
  };
  EXPECT_TRUE(samePalette(run(INT_MIN, 0), run(3, 0)));
  EXPECT_TRUE(samePalette(run(-1, 0), run(3, 0)));
  EXPECT_TRUE(samePalette(run(INT_MAX, 0), run(20, 0)));
  EXPECT_TRUE(samePalette(run(4, 255), run(4, 0)));
  EXPECT_FALSE(paletteUntouched(run(INT_MAX, 255)));
}

// Anonymous memory reserved but not committed: only the pages the resize
// samples are ever touched, so planes of gigabytes cost a few pages. Every
// byte reads as zero.
class SparsePlane {
 public:
  explicit SparsePlane(size_t bytes) : bytes_(bytes) {
    void* p = mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    base_ = p == MAP_FAILED ? nullptr : static_cast<uint8_t*>(p);
  }
  ~SparsePlane() {
    if (base_ != nullptr) munmap(base_, bytes_);
  }
  SparsePlane(const SparsePlane&) = delete;
  SparsePlane& operator=(const SparsePlane&) = delete;

  uint8_t* get() const { return base_; }

 private:
  size_t bytes_;
  uint8_t* base_;
};

TEST(HostileRecords, WidestAndTallestFramesAreSampledInsideTheirPlanes) {
  Handle handle(linkedTable(), initRecord(640, 480));
  // All-zero samples convert to (0, 135, 0) wherever they are sampled.
  Frame zeros = makeFrame8(IMAGE_FORMAT_NV21, 64, 64, 0);
  std::fill(zeros.y.begin(), zeros.y.end(), 0);
  std::fill(zeros.uv.begin(), zeros.uv.end(), 0);
  ProcessParamData expected = untouchedRecord(4);
  handle.process(&zeros.image, expected);
  ASSERT_FALSE(paletteUntouched(expected));

  struct Extreme {
    const char* name;
    int32_t width, height, stride;
  };
  const Extreme kExtremes[] = {
      {"widest packed", INT_MAX - 1, 2, 0},
      {"tallest packed", 2, INT_MAX - 1, 0},
      {"largest stride", 64, 2, INT_MAX},
      {"largest bottom-up stride", 64, 2, -INT_MAX},
  };
  for (const Extreme& e : kExtremes) {
    const int64_t pitch = e.stride == 0 ? e.width : std::abs(int64_t{e.stride});
    const size_t lumaBytes =
        static_cast<size_t>((e.height - 1) * pitch + e.width);
    const size_t chromaBytes =
        static_cast<size_t>((e.height / 2 - 1) * pitch + e.width);
    SparsePlane y(lumaBytes), uv(chromaBytes);
    if (y.get() == nullptr || uv.get() == nullptr) {
      GTEST_SKIP() << "no room to reserve " << lumaBytes + chromaBytes
                   << " bytes of address space";
    }
    Image image;
    std::memset(&image, 0, sizeof image);
    image.format = IMAGE_FORMAT_NV21;
    image.width = e.width;
    image.height = e.height;
    image.stride = e.stride;
    // Row 0 of a bottom-up plane is its highest row.
    const int64_t top = e.stride < 0 ? (e.height - 1) * pitch : 0;
    const int64_t chromaTop = e.stride < 0 ? (e.height / 2 - 1) * pitch : 0;
    image.yPlane = y.get() + top;
    image.uvPlane = uv.get() + chromaTop;
    ProcessParamData param = untouchedRecord(4);
    const auto out = handle.process(&image, param);
    EXPECT_EQ(out.err, "") << e.name;
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
      ProcessParamData param = untouchedRecord(1);
      param.showPalette = 1;
      bool askedFor = false;
      bool refused = false;
      captureOutput([&] {
        FailingAllocations capped(0, size_t{1} << 30);
        try {
          linkedTable().singleProcessImage(handle.get(), &frame.image, &param,
                                           nullptr);
        } catch (const std::bad_array_new_length&) {
          refused = true;
        } catch (const std::bad_alloc&) {
          askedFor = true;
        }
      });
      EXPECT_EQ(askedFor, fits) << width;
      EXPECT_EQ(refused, !fits) << width;
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
