#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "src/KImages.h"

// Array allocations are recorded while a test arms the log, so the tests
// see exactly which lengths init asks for (and that it asks for none when
// it refuses a size). Replacing the global array forms is the only way to
// see a buffer's length from outside.
namespace {

struct ArrayNewLog {
  bool armed = false;
  int count = 0;
  std::size_t sizes[8] = {};
};
ArrayNewLog gArrayNew;

class RecordArrayNew {
 public:
  RecordArrayNew() {
    gArrayNew = ArrayNewLog{};
    gArrayNew.armed = true;
  }
  ~RecordArrayNew() { gArrayNew.armed = false; }
  RecordArrayNew(const RecordArrayNew&) = delete;
  RecordArrayNew& operator=(const RecordArrayNew&) = delete;
};

}  // namespace

void* operator new[](std::size_t size) {
  if (gArrayNew.armed && gArrayNew.count < 8) {
    gArrayNew.sizes[gArrayNew.count++] = size;
  }
  if (void* p = std::malloc(size == 0 ? 1 : size)) {
    return p;
  }
  throw std::bad_alloc();
}
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete[](void* p, std::size_t) noexcept { std::free(p); }

namespace {

InitParamData initParam(int32_t width, int32_t height, int32_t widthInBytes,
                        IMAGE_FORMAT_TYPE format) {
  InitParamData param{};
  param.width = width;
  param.height = height;
  param.widthInBytes = widthInBytes;
  param.format = format;
  return param;
}

bool allZero(const void* data, std::size_t bytes) {
  const auto* p = static_cast<const unsigned char*>(data);
  for (std::size_t i = 0; i < bytes; ++i) {
    if (p[i] != 0) return false;
  }
  return true;
}

TEST(KImagesState, StartsWithDefaultsAndNoBuffers) {
  KImages engine;
  EXPECT_EQ(engine.m_colorNum, 3);
  EXPECT_EQ(engine.m_maxColorNum, 20);
  EXPECT_EQ(engine.m_bytesPerSample, 1);
  EXPECT_EQ(engine.m_downWidth, 0);
  EXPECT_EQ(engine.m_downHeight, 0);
  EXPECT_EQ(engine.m_downStride, 0);
  EXPECT_EQ(engine.m_downRows, 0);
  EXPECT_EQ(engine.m_downImage, nullptr);
  EXPECT_EQ(engine.m_points, nullptr);
  EXPECT_EQ(engine.m_clusters, nullptr);
  EXPECT_EQ(engine.m_KMeansEngine, nullptr);
  EXPECT_EQ(engine.m_observer, nullptr);
  EXPECT_EQ(engine.m_rowCount, 0);
}

struct SizeCase {
  int32_t width, height, widthInBytes;
  IMAGE_FORMAT_TYPE format;
  int32_t w, h, stride, bytesPerSample;
};

// Expected sizes worked by hand: width / 32, halved again when the width
// counts 16-bit samples in bytes, then rounded down to even.
TEST(KImagesInit, WorkingSizeIsOneThirtySecondRoundedDownToEven) {
  const SizeCase cases[] = {
      {4000, 3000, 0, IMAGE_FORMAT_NV21, 124, 92, 124, 1},
      {4000, 3000, 1, IMAGE_FORMAT_NV21, 124, 92, 124, 1},
      {4000, 3000, 0, IMAGE_FORMAT_YUV420SP_10BIT, 124, 92, 248, 2},
      {4000, 3000, 1, IMAGE_FORMAT_YUV420SP_10BIT, 62, 92, 124, 2},
      {100, 100, 0, IMAGE_FORMAT_NV12, 2, 2, 2, 1},
      {1920, 1080, 0, IMAGE_FORMAT_NV21, 60, 32, 60, 1},
      {1920, 1080, 0, IMAGE_FORMAT_RESERVED10, 60, 32, 60, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message()
                 << c.width << "x" << c.height << " format " << c.format
                 << " bytes " << c.widthInBytes);
    KImages engine;
    InitParamData param =
        initParam(c.width, c.height, c.widthInBytes, c.format);
    ASSERT_EQ(engine.init(&param), 0);
    EXPECT_EQ(engine.m_downWidth, c.w);
    EXPECT_EQ(engine.m_downHeight, c.h);
    EXPECT_EQ(engine.m_downRows, c.h);
    EXPECT_EQ(engine.m_downStride, c.stride);
    EXPECT_EQ(engine.m_bytesPerSample, c.bytesPerSample);
  }
}

// 124 x 92 working pixels: 17,112 bytes of 8-bit frame (twice that for
// 16-bit samples), 11,408 points of 12 bytes, 20 centres.
TEST(KImagesInit, AllocatesZeroFilledBuffersOfTheWorkingSize) {
  struct Case {
    IMAGE_FORMAT_TYPE format;
    std::size_t frameBytes;
  } cases[] = {{IMAGE_FORMAT_NV21, 17112},
               {IMAGE_FORMAT_YUV420SP_10BIT, 34224}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.format);
    KImages engine;
    InitParamData param = initParam(4000, 3000, 0, c.format);
    {
      RecordArrayNew record;
      ASSERT_EQ(engine.init(&param), 0);
    }
    ASSERT_EQ(gArrayNew.count, 3);
    EXPECT_EQ(gArrayNew.sizes[0], c.frameBytes);
    EXPECT_EQ(gArrayNew.sizes[1], 11408 * sizeof(_Point));
    EXPECT_EQ(gArrayNew.sizes[2], 20 * sizeof(_Point));
    EXPECT_TRUE(allZero(engine.m_downImage.get(), c.frameBytes));
    EXPECT_TRUE(allZero(engine.m_points.get(), 11408 * sizeof(_Point)));
    EXPECT_TRUE(allZero(engine.m_clusters.get(), 20 * sizeof(_Point)));
    ASSERT_NE(engine.m_KMeansEngine, nullptr);
    // Constructed only: its own init (which installs clusters) is per frame.
    EXPECT_EQ(engine.m_KMeansEngine->m_clusters, nullptr);
  }
}

// Below 64 pixels the working size is 0; init still succeeds and the first
// frame fails in the resize instead.
TEST(KImagesInit, TinyFrameGivesEmptyWorkingSizeWithoutFailing) {
  KImages engine;
  InitParamData param = initParam(63, 40, 0, IMAGE_FORMAT_NV21);
  {
    RecordArrayNew record;
    ASSERT_EQ(engine.init(&param), 0);
  }
  EXPECT_EQ(engine.m_downWidth, 0);
  EXPECT_EQ(engine.m_downHeight, 0);
  ASSERT_EQ(gArrayNew.count, 3);
  EXPECT_EQ(gArrayNew.sizes[0], 0u);
  EXPECT_EQ(gArrayNew.sizes[1], 0u);
  EXPECT_NE(engine.m_downImage, nullptr);
  EXPECT_NE(engine.m_points, nullptr);
  EXPECT_NE(engine.m_clusters, nullptr);
  EXPECT_NE(engine.m_KMeansEngine, nullptr);
}

// 65536 x 65536 working pixels: 3*w*h is 3 * 2^32, which is 0 in 32 bits.
// Allocating that would leave a zero-length frame behind a huge working
// size, so nothing is allocated.
TEST(KImagesInit, SizeThatWrapsIn32BitsThrowsWithoutAllocating) {
  KImages engine;
  InitParamData param = initParam(2097152, 2097152, 0, IMAGE_FORMAT_NV21);
  {
    RecordArrayNew record;
    EXPECT_THROW(engine.init(&param), std::bad_array_new_length);
  }
  EXPECT_EQ(gArrayNew.count, 0);
  EXPECT_EQ(engine.m_downWidth, 65536);
  EXPECT_EQ(engine.m_downImage, nullptr);
}

// -4000 / 32 = -125, even: -126. The frame length is negative, and array
// new refuses a negative count before allocating anything.
TEST(KImagesInit, NegativeWidthThrows) {
  KImages engine;
  InitParamData param = initParam(-4000, 3000, 0, IMAGE_FORMAT_NV21);
  {
    RecordArrayNew record;
    EXPECT_THROW(engine.init(&param), std::bad_array_new_length);
  }
  EXPECT_EQ(gArrayNew.count, 0);
  EXPECT_EQ(engine.m_downWidth, -126);
}

// Two negative sizes multiply to a positive length, which is allocated as
// it stands: w = -126, h = -94, 3*w*h/2 = 17,766 bytes, 11,844 points.
TEST(KImagesInit, TwoNegativeSizesAllocateTheirPositiveProduct) {
  KImages engine;
  InitParamData param = initParam(-4000, -3000, 0, IMAGE_FORMAT_NV21);
  {
    RecordArrayNew record;
    ASSERT_EQ(engine.init(&param), 0);
  }
  EXPECT_EQ(engine.m_downWidth, -126);
  EXPECT_EQ(engine.m_downHeight, -94);
  ASSERT_EQ(gArrayNew.count, 3);
  EXPECT_EQ(gArrayNew.sizes[0], 17766u);
  EXPECT_EQ(gArrayNew.sizes[1], 11844 * sizeof(_Point));
}

TEST(KImagesInit, SecondInitReplacesEveryBuffer) {
  KImages engine;
  InitParamData large = initParam(4000, 3000, 0, IMAGE_FORMAT_NV21);
  ASSERT_EQ(engine.init(&large), 0);
  engine.m_downImage[0] = 7;
  engine.m_points[0].r = 1.0f;
  engine.m_clusters[0].g = 2.0f;
  const void* oldFrame = engine.m_downImage.get();
  const void* oldPoints = engine.m_points.get();
  const void* oldClusters = engine.m_clusters.get();
  const void* oldEngine = engine.m_KMeansEngine.get();

  InitParamData hd = initParam(1920, 1080, 0, IMAGE_FORMAT_NV21);
  {
    RecordArrayNew record;
    ASSERT_EQ(engine.init(&hd), 0);
  }
  EXPECT_EQ(engine.m_downWidth, 60);
  EXPECT_EQ(engine.m_downHeight, 32);
  ASSERT_EQ(gArrayNew.count, 3);
  EXPECT_EQ(gArrayNew.sizes[0], 2880u);
  EXPECT_EQ(gArrayNew.sizes[1], 1920 * sizeof(_Point));
  // Each new buffer is made while the old one is still held.
  EXPECT_NE(engine.m_downImage.get(), oldFrame);
  EXPECT_NE(engine.m_points.get(), oldPoints);
  EXPECT_NE(engine.m_clusters.get(), oldClusters);
  EXPECT_NE(engine.m_KMeansEngine.get(), oldEngine);
  EXPECT_TRUE(allZero(engine.m_downImage.get(), 2880));
  EXPECT_TRUE(allZero(engine.m_points.get(), 1920 * sizeof(_Point)));
  EXPECT_TRUE(allZero(engine.m_clusters.get(), 20 * sizeof(_Point)));
}

TEST(KImagesParameters, ColourCountIsClamped) {
  const struct {
    int requested, expected;
  } cases[] = {{0, 3},  {21, 20}, {20, 20},      {1, 1},
               {-5, 3}, {7, 7},   {INT_MAX, 20}, {INT_MIN, 3}};
  KImages engine;
  for (const auto& c : cases) {
    engine.setParameters(c.requested);
    EXPECT_EQ(engine.m_colorNum, c.expected) << "requested " << c.requested;
    EXPECT_EQ(engine.m_maxColorNum, 20);
  }
}

TEST(KImagesState, UninitKeepsBuffersAndObserverIsInstalledAndRemoved) {
  struct NullObserver : KImagesObserver {
    void onPaletteCanvas(const uint8_t*, int, int, int) override {}
    void onPaletteRows(const int*, int, int) override {}
  } observer;
  KImages engine;
  InitParamData param = initParam(1920, 1080, 0, IMAGE_FORMAT_NV21);
  ASSERT_EQ(engine.init(&param), 0);
  EXPECT_EQ(engine.uninit(), 0);
  EXPECT_NE(engine.m_points, nullptr);

  engine.setObserver(&observer);
  EXPECT_EQ(engine.m_observer, &observer);
  engine.setObserver(nullptr);
  EXPECT_EQ(engine.m_observer, nullptr);
}

}  // namespace
