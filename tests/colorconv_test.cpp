// YUV to RGB, as the engine calls it on its working frame. Its argument
// checks are left out: the engine only ever passes that frame.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "colorconv/nv21_to_rgb.h"

namespace {

using Rgb = std::array<float, 3>;

// The entry, the vector kernel and its scalar twin of one instance.
template <typename T, bool uFirst, int bits>
struct Layout {
  using Sample = T;
  static constexpr bool kUFirst = uFirst;
  static constexpr int kBits = bits;
  static constexpr auto entry = &pavona::nv21_to_rgb<T, uFirst, bits, 0>;
  static constexpr auto vector =
      &pavona::internal::nv21_to_rgb_impl<T, uFirst, bits, 0>;
  static constexpr auto scalar =
      &pavona::internal::nv21_to_rgb_impl_C<T, uFirst, bits, 0>;
};
using Nv21 = Layout<uint8_t, false, 8>;
using Nv12 = Layout<uint8_t, true, 8>;
using TenBit = Layout<uint16_t, true, 10>;

// The conversion restated pixel by pixel from its equations, independently
// of the kernels' block structure: float steps in the defined order, then
// clamp to [0, max] and round halves up.
template <int bits>
Rgb referencePixel(float y, float u, float v) {
  const float offset = static_cast<float>(1 << (bits - 1));
  const float maxValue = static_cast<float>((1 << bits) - 1);
  const float dv = v + -offset;
  const float du = u + -offset;
  const float raw[3] = {dv * 1.402f + y, (y - dv * 0.714f) - du * 0.344f,
                        du * 1.772f + y};
  Rgb out;
  for (int c = 0; c < 3; ++c) {
    out[c] =
        raw[c] < 0.0f ? 0.0f : std::floor(std::min(raw[c], maxValue) + 0.5f);
  }
  return out;
}

uint32_t bitsOf(float f) {
  uint32_t u;
  std::memcpy(&u, &f, sizeof u);
  return u;
}

// A semi-planar image with padded rows; strides handed out in bytes.
template <typename T>
struct Image {
  Image(int w, int h, int pad) : width(w), height(h), stride(w + pad) {
    luma.assign(static_cast<size_t>(stride) * h, 0);
    chroma.assign(static_cast<size_t>(stride) * (h / 2 + h % 2), 0);
  }
  T& y(int x, int r) { return luma[static_cast<size_t>(r) * stride + x]; }
  T& uv(int i, int j) { return chroma[static_cast<size_t>(j) * stride + i]; }
  int strideBytes() const { return stride * static_cast<int>(sizeof(T)); }

  int width;
  int height;
  int stride;
  std::vector<T> luma;
  std::vector<T> chroma;
};

// Pixel (x, r) by the equations, of the planes starting `offset` samples in.
template <typename L, typename T>
Rgb expectedPixel(Image<T>& image, int x, int r, int offset) {
  const float c0 = image.uv(offset + (x & ~1), r / 2);
  const float c1 = image.uv(offset + (x | 1), r / 2);
  return referencePixel<L::kBits>(image.y(offset + x, r), L::kUFirst ? c0 : c1,
                                  L::kUFirst ? c1 : c0);
}

// Converts one 2x2 block of luma `y` with chroma elements (c0, c1) through
// the entry and returns its pixel, after checking all four pixels agree.
template <typename L>
Rgb convertFlatBlock(int y, int c0, int c1) {
  using T = typename L::Sample;
  const T luma[4] = {T(y), T(y), T(y), T(y)};
  const T chroma[2] = {T(c0), T(c1)};
  float out[12];
  std::fill(out, out + 12, -1.0f);
  EXPECT_EQ(
      0, L::entry(luma, chroma, out, 2, 2, 2 * sizeof(T), 2 * sizeof(T), 24));
  for (int p = 1; p < 4; ++p) {
    EXPECT_EQ(Rgb({out[0], out[1], out[2]}),
              Rgb({out[3 * p], out[3 * p + 1], out[3 * p + 2]}));
  }
  return {out[0], out[1], out[2]};
}

TEST(Nv21ToRgbPixels, WorkedExamples) {
  // Grey stays grey: full range, no 16..235 expansion.
  for (int y : {16, 128, 235}) {
    const float g = static_cast<float>(y);
    EXPECT_EQ(convertFlatBlock<Nv21>(y, 128, 128), Rgb({g, g, g})) << y;
    EXPECT_EQ(convertFlatBlock<Nv12>(y, 128, 128), Rgb({g, g, g})) << y;
  }
  // R 200.944, G 58.224, B 50.384; the same bytes as NV12 swap U and V.
  EXPECT_EQ(convertFlatBlock<Nv21>(100, 200, 100), Rgb({201, 58, 50}));
  EXPECT_EQ(convertFlatBlock<Nv12>(100, 200, 100), Rgb({61, 95, 228}));
  // R and B negative, G 135.424.
  EXPECT_EQ(convertFlatBlock<Nv21>(0, 0, 0), Rgb({0, 135, 0}));
  // R 433.054 clamps, G 164.322, B exactly 255.
  EXPECT_EQ(convertFlatBlock<Nv21>(255, 255, 128), Rgb({255, 164, 255}));
  EXPECT_EQ(convertFlatBlock<Nv12>(255, 128, 255), Rgb({255, 164, 255}));
  EXPECT_EQ(convertFlatBlock<TenBit>(1023, 512, 512), Rgb({1023, 1023, 1023}));
  // V 1023: R 1228.4 clamps, G 147.146, B 512.
  EXPECT_EQ(convertFlatBlock<TenBit>(512, 512, 1023), Rgb({1023, 147, 512}));
  // Samples are not masked to ten bits: 1124 is not read as 100.
  EXPECT_EQ(convertFlatBlock<TenBit>(1124, 512, 512), Rgb({1023, 1023, 1023}));
}

template <typename L>
class Nv21ToRgbEntry : public ::testing::Test {};
using Layouts = ::testing::Types<Nv21, Nv12, TenBit>;
TYPED_TEST_SUITE(Nv21ToRgbEntry, Layouts);

template <typename T>
void fillRandom(std::vector<T>& v, std::mt19937& rng, int bits) {
  for (T& s : v) {
    // Mostly in range; one sample in eight anywhere in T, to hit the clamps.
    const uint32_t r = rng();
    s = static_cast<T>((r & 7) == 0 ? r >> 8 : (r >> 8) & ((1u << bits) - 1));
  }
}

// The vector kernel, reached through the entry, against the equations and
// its scalar twin: random planes, odd and even sizes (the entry converts
// the even block only), offsets and padded strides. The two outputs are
// pre-filled with different bytes, so a value that one of them failed to
// write cannot match by accident.
TYPED_TEST(Nv21ToRgbEntry, MatchesEquationsAndScalarTwin) {
  using L = TypeParam;
  using T = typename L::Sample;
  std::mt19937 rng(2024);
  for (int width : {1, 2, 3, 6, 7, 8, 9, 15, 16, 17, 22, 31, 33, 62, 125}) {
    for (int height : {2, 3, 7, 10}) {
      SCOPED_TRACE(::testing::Message() << width << "x" << height);
      const int offset = static_cast<int>(rng() % 3);
      Image<T> image(width + offset, height, static_cast<int>(rng() % 5));
      fillRandom(image.luma, rng, L::kBits);
      fillRandom(image.chroma, rng, L::kBits);
      const T* y = image.luma.data() + offset;
      const T* uv = image.chroma.data() + offset;
      const int ds = (3 * width + static_cast<int>(rng() % 4)) * 4;
      std::vector<float> a(ds / 4 * height), b(a.size());
      std::memset(a.data(), 0xA5, a.size() * 4);
      std::memset(b.data(), 0x5A, b.size() * 4);
      EXPECT_EQ(0, L::entry(y, uv, a.data(), width, height, image.strideBytes(),
                            image.strideBytes(), ds));
      L::scalar(y, uv, b.data(), width & ~1, height & ~1, image.strideBytes(),
                image.strideBytes(), ds);
      for (int r = 0; r < height; ++r) {
        for (int i = 0; i < ds / 4; ++i) {
          const float got = a[r * ds / 4 + i], twin = b[r * ds / 4 + i];
          const int x = i / 3;
          if (i < 3 * (width & ~1) && r < (height & ~1)) {
            const Rgb want = expectedPixel<L>(image, x, r, offset);
            ASSERT_EQ(bitsOf(got), bitsOf(want[i % 3])) << r << ", " << i;
            ASSERT_EQ(bitsOf(twin), bitsOf(got)) << r << ", " << i;
          } else {
            ASSERT_EQ(bitsOf(got), 0xA5A5A5A5u) << r << ", " << i;
            ASSERT_EQ(bitsOf(twin), 0x5A5A5A5Au) << r << ", " << i;
          }
        }
      }
    }
  }
}

}  // namespace
