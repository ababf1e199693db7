// Nearest-neighbour resize. Expected planes come from a plain per-pixel
// evaluation of the mapping (source column trunc(x × scaleX), row
// trunc(y × scaleY), float scales); every vector kernel is also compared
// with its scalar twin. The output is bit-exact, so planes are compared
// byte for byte. Sources end exactly at their last pixel so that ASan sees
// any over-read; destinations are framed and padded with guard bytes.
#include "zel/neon/imgproc/resize.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace {

using zel::INTERP_NEAREST;
using zel::neon::imgproc::internal_resize_v00::Resize_v00;
using zel::neon::imgproc::internal_resize_v00::ResizeNearestExact;
using zel::neon::imgproc::internal_resize_v00::ResizeNearestFlex;
using zel::neon::imgproc::internal_resize_v00::ResizeNearestUpscale;

constexpr uint8_t kGuard = 0xE7;
constexpr int kFrame = 48;  // guard bytes before and after a destination

struct Layout {
  int width;
  int height;
  int unit;  // bytes a pixel
  int stride;
  size_t rowBytes() const { return size_t(width) * unit; }
};

// Exactly as long as the plane: nothing follows the last row's pixels.
std::vector<uint8_t> randomSource(const Layout& l, std::mt19937& rng) {
  std::vector<uint8_t> v(size_t(l.height - 1) * l.stride + l.rowBytes());
  for (auto& b : v) b = uint8_t(rng());
  return v;
}

std::vector<uint8_t> guardedDestination(const Layout& l) {
  return std::vector<uint8_t>(2 * kFrame + size_t(l.height) * l.stride, kGuard);
}

// Output pixels of the mapping, rows packed.
std::vector<uint8_t> mapped(const uint8_t* src, const Layout& s, int dw,
                            int dh) {
  const float sx = float(s.width) / float(dw);
  const float sy = float(s.height) / float(dh);
  std::vector<uint8_t> out;
  for (int y = 0; y < dh; ++y) {
    for (int x = 0; x < dw; ++x) {
      const uint8_t* p = src + size_t(int(float(y) * sy)) * s.stride +
                         size_t(int(float(x) * sx)) * s.unit;
      out.insert(out.end(), p, p + s.unit);
    }
  }
  return out;
}

// The destination holds `expected` as its pixels and guard bytes elsewhere.
::testing::AssertionResult holds(const std::vector<uint8_t>& buf,
                                 const Layout& d,
                                 const std::vector<uint8_t>& expected) {
  for (size_t i = 0; i < buf.size(); ++i) {
    const long at = long(i) - kFrame;
    const long y = at / d.stride, xb = at % d.stride;
    const bool pixel = at >= 0 && y < d.height && size_t(xb) < d.rowBytes();
    const uint8_t want = pixel ? expected[y * d.rowBytes() + xb] : kGuard;
    if (buf[i] != want) {
      return ::testing::AssertionFailure()
             << (pixel ? "pixel byte" : "guard byte") << " at offset " << at
             << " (row " << y << ", byte " << xb << "): " << int(buf[i])
             << " != " << int(want);
    }
  }
  return ::testing::AssertionSuccess();
}

template <typename T, int cn>
struct Plane {
  static constexpr int kUnit = cn * int(sizeof(T));
  static constexpr int kMinBlocks = 16 / int(sizeof(T));  // B
  static constexpr int kMaxRatio = 16 / kUnit;
  using Kernel = Resize_v00<T, cn, 1, INTERP_NEAREST, float,
                            sizeof(T) == 1 ? 0 : 6, cn == 2>;

  // Resizes a random source of sw × sh through the plane kernel, with
  // padded strides, and checks the destination.
  static void check(int sw, int sh, int dw, int dh, std::mt19937& rng) {
    SCOPED_TRACE(::testing::Message() << sw << "x" << sh << " -> " << dw << "x"
                                      << dh << ", unit " << kUnit);
    const Layout s{sw, sh, kUnit, sw * kUnit + int(rng() % 3) * 8};
    const Layout d{dw, dh, kUnit, dw * kUnit + 6};
    const auto src = randomSource(s, rng);
    auto dst = guardedDestination(d);
    EXPECT_EQ(0, Kernel::resize(reinterpret_cast<const T*>(src.data()),
                                reinterpret_cast<T*>(dst.data() + kFrame), sw,
                                sh, dw, dh, s.stride, d.stride));
    EXPECT_TRUE(holds(dst, d, mapped(src.data(), s, dw, dh)));
  }
};

using PlaneTypes = ::testing::Types<Plane<uint8_t, 1>, Plane<uint8_t, 2>,
                                    Plane<uint16_t, 1>, Plane<uint16_t, 2>>;
template <typename P>
class PlaneResize : public ::testing::Test {};
TYPED_TEST_SUITE(PlaneResize, PlaneTypes);

// Height pairs whose ratio is never exactly 2, 3 or 4 either way, so that
// the width alone decides the path; equal heights sample the last row.
constexpr std::pair<int, int> kHeights[] = {{3, 3}, {5, 3}, {3, 5}, {4, 7}};

TYPED_TEST(PlaneResize, ExactFactorsBothWays) {
  std::mt19937 rng(11);
  for (int k = 2; k <= 4; ++k) {
    for (int w = 1; w <= 40; w += 1 + int(rng() % 3)) {
      const int h = 1 + int(rng() % 3);
      TypeParam::check(k * w, k * h, w, h, rng);
      TypeParam::check(w, h, k * w, k * h, rng);
    }
  }
}

// Ratios R = 1 ... Rmax on rows from just B × R wide (16-bit: spans longer
// than the row, destinations of 8 to 15 pixels) to several blocks wide.
TYPED_TEST(PlaneResize, TableLookupRatios) {
  std::mt19937 rng(12);
  const int b = TypeParam::kMinBlocks;
  for (int r = 1; r <= TypeParam::kMaxRatio; ++r) {
    for (int sw : {b * r, b * r + 1 + int(rng() % (3 * r)), 16 * r + 5,
                   48 * r + int(rng() % 40)}) {
      const int lo = (sw + r - 1) / r;
      const int hi = r == 1 ? 2 * sw - 1 : (sw - 1) / (r - 1);
      const int dw = lo + int(rng() % (hi - lo + 1));
      if (std::ceil(float(sw) / float(dw)) != float(r)) continue;
      const auto [sh, dh] = kHeights[rng() % 4];
      TypeParam::check(sw, sh, dw, dh, rng);
    }
  }
}

// R above Rmax, and rows narrower than B × R: the scalar table path.
TYPED_TEST(PlaneResize, GeneralTablePath) {
  std::mt19937 rng(13);
  const int rmax = TypeParam::kMaxRatio;
  for (int r : {rmax + 1, rmax + 2, 33}) {
    const int dw = 1 + int(rng() % 40);
    TypeParam::check(dw * r - int(rng() % r), 3, dw, 3, rng);
  }
  for (int r = 2; r <= rmax; ++r) {
    TypeParam::check(TypeParam::kMinBlocks * r - 1, 4, TypeParam::kMinBlocks, 7,
                     rng);
  }
}

// Runs a vector kernel and its scalar twin (same signature) on one source
// into two guarded destinations; every byte must agree, guards included.
template <typename T, typename Kernel, typename... Args>
void expectTwins(const Layout& s, const Layout& d, Kernel vector, Kernel scalar,
                 std::mt19937& rng, Args... args) {
  const auto src = randomSource(s, rng);
  auto a = guardedDestination(d), b = a;
  const T* in = reinterpret_cast<const T*>(src.data());
  vector(in, reinterpret_cast<T*>(a.data() + kFrame), args...);
  scalar(in, reinterpret_cast<T*>(b.data() + kFrame), args...);
  EXPECT_EQ(a, b) << s.width << "x" << s.height << " -> " << d.width << "x"
                  << d.height << ", unit " << s.unit;
}

template <typename U, int K>
void exactTwins(std::mt19937& rng) {
  using E = ResizeNearestExact<U, K>;
  const int u = sizeof(U);
  for (int w = 1; w <= 3 * 32 / u + 1; w += 1 + int(rng() % 3)) {
    const Layout small{w, 2, u, w * u + 3}, large{K * w, 2 * K, u, K * w * u};
    expectTwins<uint8_t>(large, small, &E::decimate, &E::decimate_C, rng, w, 2,
                         large.stride, small.stride);
    expectTwins<uint8_t>(small, large, &E::enlarge, &E::enlarge_C, rng, w, 2,
                         small.stride, large.stride);
  }
}

template <typename U>
void exactTwinsUpTo4(std::mt19937& rng) {
  exactTwins<U, 2>(rng), exactTwins<U, 3>(rng), exactTwins<U, 4>(rng);
}

TEST(ResizeKernelTwins, ExactRatiosMatchScalar) {
  std::mt19937 rng(21);
  exactTwinsUpTo4<uint8_t>(rng), exactTwinsUpTo4<uint16_t>(rng);
  exactTwinsUpTo4<uint32_t>(rng);
}

template <typename T, int cn, int K>
void upscaleTwins(std::mt19937& rng) {
  using Up = ResizeNearestUpscale<T, cn, 1, K>;
  const int u = cn * sizeof(T);
  for (int w : {1, 7, 32 / u, 64 / u + 3}) {
    const Layout s{w, 3, u, w * u}, d{K * w, 3 * K, u, K * w * u + 5};
    expectTwins<T>(s, d, &Up::resize, &Up::resize_C, rng, w, 3, s.stride,
                   d.stride);
  }
}

TEST(ResizeKernelTwins, UpscaleMatchesScalar) {
  std::mt19937 rng(22);
  upscaleTwins<uint8_t, 1, 4>(rng), upscaleTwins<uint8_t, 2, 3>(rng);
  upscaleTwins<uint8_t, 2, 4>(rng), upscaleTwins<uint16_t, 1, 4>(rng);
  upscaleTwins<uint16_t, 2, 3>(rng), upscaleTwins<uint16_t, 2, 4>(rng);
}

// Rows from B × R pixels wide (for 16-bit, spans longer than the row) to
// several blocks.
template <typename T, int cn, int N>
void flexTwins(std::mt19937& rng) {
  using Flex = ResizeNearestFlex<T, cn, 1, N>;
  const int u = cn * sizeof(T), r = N / u, b = 16 / int(sizeof(T));
  for (int sw : {b * r, 16 * r + 3, 40 * r + 1}) {
    const int dw = (sw + r - 1) / r + int(rng() % 4);
    const Layout s{sw, 3, u, sw * u}, d{dw, 4, u, dw * u + 2};
    expectTwins<T>(s, d, &Flex::resize, &Flex::resize_C, rng, sw, 3, dw, 4,
                   s.stride, d.stride);
  }
}

template <typename T, int cn, int... R>
void flexTwinsUpTo(std::mt19937& rng, std::integer_sequence<int, R...>) {
  (flexTwins<T, cn, (R + 1) * cn* int(sizeof(T))>(rng), ...);
}

TEST(ResizeKernelTwins, TableLookupMatchesScalar) {
  std::mt19937 rng(23);
  flexTwinsUpTo<uint8_t, 1>(rng, std::make_integer_sequence<int, 16>());
  flexTwinsUpTo<uint8_t, 2>(rng, std::make_integer_sequence<int, 8>());
  flexTwinsUpTo<uint16_t, 1>(rng, std::make_integer_sequence<int, 8>());
  flexTwinsUpTo<uint16_t, 2>(rng, std::make_integer_sequence<int, 4>());
}

template <typename T>
int32_t resizeFrame(const T* sy, const T* suv, T* dy, T* duv, int sw, int sh,
                    int dw, int dh, int sys, int suvs, int dys, int duvs) {
  constexpr bool k8 = sizeof(T) == 1;
  return zel::neon::imgproc::resize_v00 < T, T,
         k8 ? zel::YUV420SP_8BIT : zel::YUV420SP_10BIT, INTERP_NEAREST, float,
         k8 ? 0 : 6 > (sy, suv, dy, duv, sw, sh, dw, dh, sys, suvs, dys, duvs);
}

// A semi-planar frame: luma and chroma planes in separate buffers. Strides
// as handed to the front end: 0 (packed), padded, or negative with the
// plane pointer on the highest-addressed row.
template <typename T>
struct Frame {
  Layout luma, chroma;
  std::vector<uint8_t> y, uv;
  int lumaArg, chromaArg;
  bool source;

  Frame(int w, int h, int pad, bool negative, bool src, std::mt19937& rng)
      : luma{w, h, int(sizeof(T)), w * int(sizeof(T)) + pad},
        chroma{w / 2, h / 2, 2 * int(sizeof(T)), w * int(sizeof(T)) + pad},
        source(src) {
    y = source ? randomSource(luma, rng) : guardedDestination(luma);
    uv = source ? randomSource(chroma, rng) : guardedDestination(chroma);
    lumaArg = negative ? -luma.stride : pad == 0 ? 0 : luma.stride;
    chromaArg = negative ? -chroma.stride : pad == 0 ? 0 : chroma.stride;
  }
  T* plane(std::vector<uint8_t>& v, const Layout& l, int arg) {
    uint8_t* first = v.data() + (source ? 0 : kFrame);
    if (arg < 0) first += size_t(l.height - 1) * l.stride;
    return reinterpret_cast<T*>(first);
  }
  T* yPlane() { return plane(y, luma, lumaArg); }
  T* uvPlane() { return plane(uv, chroma, chromaArg); }
};

template <typename T>
class FrameResize : public ::testing::Test {};
using SampleTypes = ::testing::Types<uint8_t, uint16_t>;
TYPED_TEST_SUITE(FrameResize, SampleTypes);

// Both planes are walked from their lowest address, so in memory order the
// output is always the mapping of the source, whatever the stride signs:
// kind 0 packed (stride 0), 1 padded, 2 bottom-up source (the image comes
// out flipped), 3 bottom-up destination, 4 both bottom-up.
TYPED_TEST(FrameResize, ResizesBothPlanesUnderEveryStrideKind) {
  using T = TypeParam;
  std::mt19937 rng(31);
  const int sizes[][4] = {{64, 48, 32, 24}, {96, 12, 24, 6}, {40, 30, 24, 18},
                          {36, 20, 36, 20}, {2, 2, 4, 4},    {20, 6, 60, 18},
                          {400, 8, 12, 4},  {160, 10, 62, 4}};
  for (const auto& z : sizes) {
    for (int kind = 0; kind < 5; ++kind) {
      SCOPED_TRACE(::testing::Message() << z[0] << "x" << z[1] << " -> " << z[2]
                                        << "x" << z[3] << " kind " << kind);
      const int pad = kind == 0 ? 0 : 2 * int(sizeof(T)) * (kind + 1);
      Frame<T> s(z[0], z[1], pad, kind == 2 || kind == 4, true, rng);
      Frame<T> d(z[2], z[3], pad, kind == 3 || kind == 4, false, rng);
      ASSERT_EQ(0,
                resizeFrame<T>(s.yPlane(), s.uvPlane(), d.yPlane(), d.uvPlane(),
                               z[0], z[1], z[2], z[3], s.lumaArg, s.chromaArg,
                               d.lumaArg, d.chromaArg));
      EXPECT_TRUE(holds(d.y, d.luma, mapped(s.y.data(), s.luma, z[2], z[3])));
      EXPECT_TRUE(holds(d.uv, d.chroma,
                        mapped(s.uv.data(), s.chroma, z[2] / 2, z[3] / 2)));
    }
  }
}

TYPED_TEST(FrameResize, RejectsBadArgumentsAndWritesNothing) {
  using T = TypeParam;
  std::mt19937 rng(32);
  Frame<T> s(16, 8, 0, false, true, rng), d(8, 4, 0, false, false, rng);
  T *sy = s.yPlane(), *suv = s.uvPlane(), *dy = d.yPlane(), *duv = d.uvPlane();
  const int bad[][4] = {{15, 8, 8, 4}, {16, 7, 8, 4}, {16, 8, 7, 4},
                        {16, 8, 8, 3}, {0, 8, 8, 4},  {16, 0, 8, 4},
                        {16, 8, 0, 4}, {16, 8, 8, -2}};
  for (const auto& z : bad) {
    EXPECT_EQ(769, resizeFrame<T>(sy, suv, dy, duv, z[0], z[1], z[2], z[3], 0,
                                  0, 0, 0));
  }
  for (int null = 0; null < 4; ++null) {
    EXPECT_EQ(
        769, resizeFrame<T>(null == 0 ? nullptr : sy, null == 1 ? nullptr : suv,
                            null == 2 ? nullptr : dy, null == 3 ? nullptr : duv,
                            16, 8, 8, 4, 0, 0, 0, 0));
  }
  EXPECT_EQ(d.y, guardedDestination(d.luma));
  EXPECT_EQ(d.uv, guardedDestination(d.chroma));
}

}  // namespace
