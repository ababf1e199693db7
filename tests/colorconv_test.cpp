#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "colorconv/nv21_to_rgb.h"

namespace {

using Rgb = std::array<float, 3>;

template <typename T, bool uFirst, int bits>
struct Layout {
  using Sample = T;
  static constexpr bool kUFirst = uFirst;
  static constexpr int kBits = bits;

  static int entry(const T* y, const T* uv, float* dst, int width, int height,
                   int yStride, int uvStride, int dstStride) {
    return pavona::nv21_to_rgb<T, uFirst, bits, 0>(
        y, uv, dst, width, height, yStride, uvStride, dstStride);
  }
  static int vector(const T* y, const T* uv, float* dst, int width, int height,
                    int yStride, int uvStride, int dstStride) {
    return pavona::internal::nv21_to_rgb_impl<T, uFirst, bits, 0>(
        y, uv, dst, width, height, yStride, uvStride, dstStride);
  }
  static int scalar(const T* y, const T* uv, float* dst, int width, int height,
                    int yStride, int uvStride, int dstStride) {
    return pavona::internal::nv21_to_rgb_impl_C<T, uFirst, bits, 0>(
        y, uv, dst, width, height, yStride, uvStride, dstStride);
  }
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

// Float output rows of 3 * width values and `pad` more, pre-filled.
struct Output {
  Output(int w, int h, int pad, float fill)
      : stride(3 * w + pad), values(static_cast<size_t>(stride) * h, fill) {}
  float* data() { return values.data(); }
  int strideBytes() const { return stride * 4; }
  Rgb at(int x, int r) const {
    const float* p = &values[static_cast<size_t>(r) * stride + 3 * x];
    return {p[0], p[1], p[2]};
  }

  int stride;
  std::vector<float> values;
};

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

TEST(Nv21ToRgbPixels, EightBitWorkedExamples) {
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
}

TEST(Nv21ToRgbPixels, TenBitWorkedExamples) {
  EXPECT_EQ(convertFlatBlock<TenBit>(1023, 512, 512), Rgb({1023, 1023, 1023}));
  // V 1023: R 1228.4 clamps, G 147.146, B 512.
  EXPECT_EQ(convertFlatBlock<TenBit>(512, 512, 1023), Rgb({1023, 147, 512}));
  // Samples are not masked to ten bits: 1124 is not read as 100.
  EXPECT_EQ(convertFlatBlock<TenBit>(1124, 512, 512), Rgb({1023, 1023, 1023}));
}

// Every chroma pair of 8 bits, under random luma, against the per-pixel
// equations: checks the block layout, the chroma order and the rounding.
TEST(Nv21ToRgbPixels, EveryEightBitChromaPairMatchesEquations) {
  std::mt19937 rng(7);
  Image<uint8_t> image(512, 512, 6);
  for (int r = 0; r < image.height; ++r) {
    for (int x = 0; x < image.width; ++x) image.y(x, r) = rng() & 0xFF;
  }
  for (int j = 0; j < 256; ++j) {
    for (int k = 0; k < 256; ++k) {
      image.uv(2 * k, j) = static_cast<uint8_t>(j);
      image.uv(2 * k + 1, j) = static_cast<uint8_t>(k);
    }
  }
  auto check = [&](auto layout, bool uFirst) {
    using L = decltype(layout);
    for (auto convert : {&L::vector, &L::scalar}) {
      Output out(image.width, image.height, 5, -1.0f);
      ASSERT_EQ(0, convert(image.luma.data(), image.chroma.data(), out.data(),
                           image.width, image.height, image.strideBytes(),
                           image.strideBytes(), out.strideBytes()));
      int mismatches = 0;
      for (int r = 0; r < image.height; ++r) {
        for (int x = 0; x < image.width; ++x) {
          const float c0 = image.uv(x & ~1, r / 2);
          const float c1 = image.uv(x | 1, r / 2);
          const Rgb want = referencePixel<8>(image.y(x, r), uFirst ? c0 : c1,
                                             uFirst ? c1 : c0);
          const Rgb got = out.at(x, r);
          for (int c = 0; c < 3; ++c) {
            if (bitsOf(got[c]) != bitsOf(want[c]) && ++mismatches <= 5) {
              ADD_FAILURE() << "pixel (" << x << ", " << r << ") channel " << c
                            << ": " << got[c] << " != " << want[c];
            }
          }
        }
      }
      EXPECT_EQ(mismatches, 0);
    }
  };
  check(Nv21(), false);
  check(Nv12(), true);
}

template <typename L>
class Nv21ToRgbEntry : public ::testing::Test {};

template <typename L>
class Nv21ToRgbKernel : public ::testing::Test {};

using Layouts = ::testing::Types<Nv21, Nv12, TenBit>;
struct LayoutName {
  template <typename L>
  static std::string GetName(int) {
    if (std::is_same<L, Nv21>::value) return "Nv21";
    if (std::is_same<L, Nv12>::value) return "Nv12";
    return "TenBit";
  }
};
TYPED_TEST_SUITE(Nv21ToRgbEntry, Layouts, LayoutName);
TYPED_TEST_SUITE(Nv21ToRgbKernel, Layouts, LayoutName);

template <typename T>
void fillRandom(std::vector<T>& v, std::mt19937& rng, int bits) {
  for (T& s : v) {
    // Mostly in range; one sample in eight anywhere in T, to hit the clamps.
    const uint32_t r = rng();
    s = static_cast<T>((r & 7) == 0 ? r >> 8 : (r >> 8) & ((1u << bits) - 1));
  }
}

TYPED_TEST(Nv21ToRgbEntry, OddSizeConvertsEvenBlockOnly) {
  using L = TypeParam;
  using T = typename L::Sample;
  std::mt19937 rng(11);
  for (auto [width, height] : {std::pair{7, 5}, {21, 7}, {1, 3}}) {
    SCOPED_TRACE(::testing::Message() << width << "x" << height);
    Image<T> image(width, height, 3);
    fillRandom(image.luma, rng, L::kBits);
    fillRandom(image.chroma, rng, L::kBits);
    const float sentinel = -7.0f;
    Output out(width, height, 2, sentinel);
    ASSERT_EQ(0, L::entry(image.luma.data(), image.chroma.data(), out.data(),
                          width, height, image.strideBytes(),
                          image.strideBytes(), out.strideBytes()));
    for (int r = 0; r < height; ++r) {
      for (int i = 0; i < out.stride; ++i) {
        const int x = i / 3;
        const float got = out.values[static_cast<size_t>(r) * out.stride + i];
        if (x < (width & ~1) && r < (height & ~1)) {
          const float c0 = image.uv(x & ~1, r / 2);
          const float c1 = image.uv(x | 1, r / 2);
          const Rgb want = referencePixel<L::kBits>(
              image.y(x, r), L::kUFirst ? c0 : c1, L::kUFirst ? c1 : c0);
          EXPECT_EQ(bitsOf(got), bitsOf(want[i % 3]))
              << "row " << r << " " << i;
        } else {
          EXPECT_EQ(got, sentinel) << "row " << r << " float " << i;
        }
      }
    }
  }
}

TYPED_TEST(Nv21ToRgbEntry, RejectsBadArgumentsWithoutWriting) {
  using L = TypeParam;
  using T = typename L::Sample;
  const int w = 4;
  const int h = 4;
  const std::vector<T> luma(w * h, 100);
  const std::vector<T> chroma(w * h / 2, 100);
  const int ys = w * sizeof(T);
  const int ds = 12 * w;
  std::vector<float> out(3 * w * h, -3.0f);
  const T* y = luma.data();
  const T* uv = chroma.data();
  float* d = out.data();

  EXPECT_EQ(-1, L::entry(nullptr, uv, d, w, h, ys, ys, ds));
  EXPECT_EQ(-1, L::entry(y, nullptr, d, w, h, ys, ys, ds));
  EXPECT_EQ(-1, L::entry(y, uv, nullptr, w, h, ys, ys, ds));
  EXPECT_EQ(-1, L::entry(y, uv, d, w, h, ys, ys, 3 * w - 1));
  EXPECT_EQ(-1, L::entry(y, uv, d, w, h, ys, ys, -ds));
  EXPECT_EQ(-1, L::entry(y, uv, d, 0, h, ys, ys, ds));
  EXPECT_EQ(-1, L::entry(y, uv, d, -2, h, ys, ys, ds));
  EXPECT_EQ(-1, L::entry(y, uv, d, w, 0, ys, ys, ds));
  EXPECT_EQ(-1, L::entry(y, uv, d, w, -4, ys, ys, ds));
  EXPECT_EQ(-1, L::entry(y, uv, d, w, h, w - 1, ys, ds));
  for (float v : out) ASSERT_EQ(v, -3.0f);
}

// The entry compares floats with bytes for the output and samples with
// bytes for luma; both checks pass more than a row really needs.
TYPED_TEST(Nv21ToRgbEntry, LooseStrideChecksPass) {
  using L = TypeParam;
  using T = typename L::Sample;
  const int w = 20;
  const int h = 6;
  std::mt19937 rng(3);
  Image<T> image(w, h, 0);
  fillRandom(image.luma, rng, L::kBits);
  fillRandom(image.chroma, rng, L::kBits);

  // Rows 3 * w bytes apart overlap; the final bytes still match the scalar
  // write order exactly.
  const size_t floats = static_cast<size_t>((h - 1) * 3 * w + 12 * w) / 4;
  std::vector<float> viaEntry(floats, 1.0f);
  std::vector<float> viaScalar(floats, 1.0f);
  EXPECT_EQ(0, L::entry(image.luma.data(), image.chroma.data(), viaEntry.data(),
                        w, h, image.strideBytes(), image.strideBytes(), 3 * w));
  L::scalar(image.luma.data(), image.chroma.data(), viaScalar.data(), w, h,
            image.strideBytes(), image.strideBytes(), 3 * w);
  EXPECT_EQ(0, std::memcmp(viaEntry.data(), viaScalar.data(),
                           floats * sizeof(float)));

  Output out(w, h, 0, 0.0f);
  EXPECT_EQ(0, L::entry(image.luma.data(), image.chroma.data(), out.data(), w,
                        h, w, w, out.strideBytes()));
}

// The vector kernel, reached through the entry, against its scalar twin:
// random planes, odd and even sizes, offsets and padded strides. The two
// outputs are pre-filled with different bytes, so a value that one of them
// failed to write cannot match by accident.
TYPED_TEST(Nv21ToRgbKernel, VectorMatchesScalarBitForBit) {
  using L = TypeParam;
  using T = typename L::Sample;
  std::mt19937 rng(2024);
  const int widths[] = {2,  3,  4,  6,  7,  8,  9,  10, 14, 15, 16,  17,
                        18, 22, 23, 30, 31, 32, 33, 34, 62, 63, 124, 125};
  const int heights[] = {2, 3, 4, 7, 10, 92};
  for (int width : widths) {
    for (int height : heights) {
      SCOPED_TRACE(::testing::Message() << width << "x" << height);
      const int offset = static_cast<int>(rng() % 3);
      Image<T> image(width + offset, height, static_cast<int>(rng() % 5));
      fillRandom(image.luma, rng, L::kBits);
      fillRandom(image.chroma, rng, L::kBits);
      const T* y = image.luma.data() + offset;
      const T* uv = image.chroma.data() + offset;
      const int ds = (3 * width + static_cast<int>(rng() % 4)) * 4;
      std::vector<uint8_t> a(static_cast<size_t>(ds) * height, 0xA5);
      std::vector<uint8_t> b(a.size(), 0x5A);
      EXPECT_EQ(
          0, L::entry(y, uv, reinterpret_cast<float*>(a.data()), width, height,
                      image.strideBytes(), image.strideBytes(), ds));
      EXPECT_EQ(0, L::scalar(y, uv, reinterpret_cast<float*>(b.data()),
                             width & ~1, height & ~1, image.strideBytes(),
                             image.strideBytes(), ds));
      const int written = 12 * (width & ~1);
      for (int r = 0; r < height; ++r) {
        const size_t row = static_cast<size_t>(r) * ds;
        const int end = r < (height & ~1) ? written : 0;
        EXPECT_EQ(0, std::memcmp(&a[row], &b[row], end)) << "row " << r;
        for (int i = end; i < ds; ++i) {
          ASSERT_EQ(a[row + i], 0xA5) << "row " << r << " byte " << i;
          ASSERT_EQ(b[row + i], 0x5A) << "row " << r << " byte " << i;
        }
      }
    }
  }
}

TYPED_TEST(Nv21ToRgbKernel, ZeroHeightWritesNothing) {
  using L = TypeParam;
  using T = typename L::Sample;
  const T plane[8] = {};
  float out[24];
  std::fill(out, out + 24, -2.0f);
  EXPECT_EQ(0, L::vector(plane, plane, out, 4, 0, 8, 8, 48));
  EXPECT_EQ(0, L::vector(plane, plane, out, 0, 2, 8, 8, 48));
  for (float v : out) EXPECT_EQ(v, -2.0f);
}

}  // namespace
