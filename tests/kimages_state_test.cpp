#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <new>

#include "src/KImages.h"

namespace {

// Runs init on a record of the given fields; returns its result.
int initWith(KImages& engine, int32_t width, int32_t height,
             int32_t widthInBytes, IMAGE_FORMAT_TYPE format) {
  InitParamData param{};
  param.width = width;
  param.height = height;
  param.widthInBytes = widthInBytes;
  param.format = format;
  return engine.init(&param);
}

bool allZero(const void* data, std::size_t bytes) {
  const auto* p = static_cast<const unsigned char*>(data);
  for (std::size_t i = 0; i < bytes; ++i) {
    if (p[i] != 0) return false;
  }
  return true;
}

// Worked by hand: w = width / 32, halved again when the width counts 16-bit
// samples in bytes, then rounded down to even; h likewise without halving.
// The frame is (3 * w * h / 2) * bytes per sample; points are 12 bytes.
TEST(KImagesInit, SizesAndAllocatesZeroFilledBuffers) {
  const struct {
    int32_t width, height, widthInBytes;
    IMAGE_FORMAT_TYPE format;
    int32_t w, h, stride;
    std::size_t frameBytes;
  } cases[] = {
      {4000, 3000, 0, IMAGE_FORMAT_NV21, 124, 92, 124, 17112},
      {4000, 3000, 1, IMAGE_FORMAT_NV21, 124, 92, 124, 17112},
      {4000, 3000, 0, IMAGE_FORMAT_YUV420SP_10BIT, 124, 92, 248, 34224},
      {4000, 3000, 1, IMAGE_FORMAT_YUV420SP_10BIT, 62, 92, 124, 17112},
      {100, 100, 0, IMAGE_FORMAT_NV12, 2, 2, 2, 6},
      {1920, 1080, 0, IMAGE_FORMAT_RESERVED10, 60, 32, 60, 2880},
      // Below 64 pixels the working size is 0 and init still succeeds.
      {63, 40, 0, IMAGE_FORMAT_NV21, 0, 0, 0, 0},
      // Two negative sizes give a positive product, allocated as it is.
      {-4000, -3000, 0, IMAGE_FORMAT_NV21, -126, -94, -126, 17766},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message()
                 << c.width << "x" << c.height << " format " << c.format
                 << " bytes " << c.widthInBytes);
    KImages engine;
    ASSERT_EQ(initWith(engine, c.width, c.height, c.widthInBytes, c.format), 0);
    EXPECT_EQ(engine.m_downWidth, c.w);
    EXPECT_EQ(engine.m_downHeight, c.h);
    EXPECT_EQ(engine.m_downRows, c.h);
    EXPECT_EQ(engine.m_downStride, c.stride);
    EXPECT_EQ(engine.m_bytesPerSample, c.stride == c.w ? 1 : 2);
    const std::size_t pointBytes = std::size_t(c.w * c.h) * sizeof(_Point);
    EXPECT_TRUE(allZero(engine.m_downImage.get(), c.frameBytes));
    EXPECT_TRUE(allZero(engine.m_points.get(), pointBytes));
    EXPECT_TRUE(allZero(engine.m_clusters.get(), 20 * sizeof(_Point)));
    // Constructed only; its own init installs clusters once per frame.
    ASSERT_NE(engine.m_KMeansEngine, nullptr);
    EXPECT_EQ(engine.m_KMeansEngine->m_clusters, nullptr);
  }
}

// 2097152 / 32 = 65536 each way: 3 * w * h is 3 * 2^32, 0 in 32 bits, and
// a zero-length frame behind a huge working size is refused. -4000 / 32 is
// -125, even -126: a negative frame length.
TEST(KImagesInit, WrappedOrNegativeSizesThrowWithoutAllocating) {
  const struct {
    int32_t width, height, w;
  } cases[] = {{2097152, 2097152, 65536}, {-4000, 3000, -126}};
  for (const auto& c : cases) {
    KImages engine;
    EXPECT_THROW(initWith(engine, c.width, c.height, 0, IMAGE_FORMAT_NV21),
                 std::bad_array_new_length)
        << c.width << "x" << c.height;
    EXPECT_EQ(engine.m_downWidth, c.w);
    EXPECT_EQ(engine.m_downImage, nullptr);
  }
}

TEST(KImagesInit, SecondInitReplacesEveryBuffer) {
  KImages engine;
  ASSERT_EQ(initWith(engine, 4000, 3000, 0, IMAGE_FORMAT_NV21), 0);
  engine.m_downImage[0] = 7;
  engine.m_points[0].r = 1.0f;
  engine.m_clusters[0].g = 2.0f;
  const void* old[] = {engine.m_downImage.get(), engine.m_points.get(),
                       engine.m_clusters.get(), engine.m_KMeansEngine.get()};

  ASSERT_EQ(initWith(engine, 1920, 1080, 0, IMAGE_FORMAT_NV21), 0);
  // Each new buffer is made while the old one is still held.
  EXPECT_NE(engine.m_downImage.get(), old[0]);
  EXPECT_NE(engine.m_points.get(), old[1]);
  EXPECT_NE(engine.m_clusters.get(), old[2]);
  EXPECT_NE(engine.m_KMeansEngine.get(), old[3]);
  EXPECT_EQ(engine.m_downImage[0], 0);
  EXPECT_EQ(engine.m_points[0].r, 0.0f);
  EXPECT_EQ(engine.m_clusters[0].g, 0.0f);
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
  }
  EXPECT_EQ(engine.m_maxColorNum, 20);
}

}  // namespace
