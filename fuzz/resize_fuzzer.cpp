// zel::neon::imgproc::resize_v00, both instances, over planes of exactly the
// bytes their records describe: source planes end at their last row's last
// sample, destination planes hold whole strides (the exact enlargements
// copy whole strides). Every destination byte is checked: pixels against the
// nearest-neighbour mapping walked from each plane's lowest row, padding
// bytes unchanged, and nothing written when the call is refused.
#include <cstdint>
#include <cstring>

#include "api/pavona_host.h"
#include "fuzz/fuzz_support.h"
#include "zel/neon/imgproc/resize.h"

namespace {

using pavona::fuzz::fail;
using pavona::fuzz::fillBytes;
using pavona::fuzz::pickStride;
using pavona::fuzz::Plane;

constexpr uint8_t kCanary = 0xA5;
// Padding of a row, in samples.
constexpr int kMaxPad = 20;

// Sizes mostly valid and related by the exact ratios the kernel treats
// apart, sometimes odd, zero or negative.
void pickSizes(FuzzedDataProvider& in, int32_t& srcWidth, int32_t& srcHeight,
               int32_t& dstWidth, int32_t& dstHeight) {
  auto even = [&](int lo, int hi) {
    return 2 * in.ConsumeIntegralInRange(lo, hi);
  };
  dstWidth = even(1, 80);
  dstHeight = even(1, 24);
  const int relation = in.ConsumeIntegralInRange(0, 7);
  if (relation >= 1 && relation <= 3) {
    srcWidth = (relation + 1) * dstWidth;
    srcHeight = (relation + 1) * dstHeight;
  } else if (relation >= 4 && relation <= 6) {
    srcWidth = dstWidth;
    srcHeight = dstHeight;
    dstWidth *= relation - 2;
    dstHeight *= relation - 2;
  } else {
    srcWidth = even(1, 200);
    srcHeight = even(1, 40);
  }
  if (in.ConsumeIntegralInRange(0, 15) == 0) {
    int32_t* sizes[] = {&srcWidth, &srcHeight, &dstWidth, &dstHeight};
    *sizes[in.ConsumeIntegralInRange(0, 3)] = in.ConsumeIntegralInRange(-3, 3);
  }
}

struct PlaneView {
  const uint8_t* lowest;  // the row at the lowest address
  int32_t stride;         // positive
};

PlaneView lowestRow(const uint8_t* first, int32_t stride, int32_t rows,
                    int32_t rowBytes) {
  if (stride == 0) return {first, rowBytes};
  if (stride > 0) return {first, stride};
  return {first + static_cast<int64_t>(rows - 1) * stride, -stride};
}

// Checks one plane of `unit`-byte pixels against the mapping; every byte of
// the destination allocation is either a mapped pixel or still the canary.
void checkPlane(const Plane& srcPlane, int32_t srcStride, const Plane& dstPlane,
                int32_t dstStride, int32_t srcWidth, int32_t srcHeight,
                int32_t dstWidth, int32_t dstHeight, int unit) {
  const PlaneView src =
      lowestRow(srcPlane.first(), srcStride, srcHeight, srcWidth * unit);
  const PlaneView dst =
      lowestRow(dstPlane.first(), dstStride, dstHeight, dstWidth * unit);
  const float scaleX =
      static_cast<float>(srcWidth) / static_cast<float>(dstWidth);
  const float scaleY =
      static_cast<float>(srcHeight) / static_cast<float>(dstHeight);
  for (int32_t y = 0; y < dstHeight; ++y) {
    const int32_t sy = static_cast<int32_t>(static_cast<float>(y) * scaleY);
    const uint8_t* srcRow = src.lowest + static_cast<int64_t>(sy) * src.stride;
    const uint8_t* dstRow = dst.lowest + static_cast<int64_t>(y) * dst.stride;
    for (int32_t x = 0; x < dstWidth; ++x) {
      const int32_t sx = static_cast<int32_t>(static_cast<float>(x) * scaleX);
      if (std::memcmp(dstRow + x * unit, srcRow + sx * unit, unit) != 0) {
        fail("pixel differs from the nearest-neighbour mapping");
      }
    }
    for (int32_t b = dstWidth * unit; b < dst.stride; ++b) {
      if (dstRow[b] != kCanary) fail("padding byte written");
    }
  }
}

template <typename T, zel::YUV420SemiPlanarFormat layout, int shift>
void run(FuzzedDataProvider& in) {
  constexpr int kSample = sizeof(T);
  int32_t srcWidth, srcHeight, dstWidth, dstHeight;
  pickSizes(in, srcWidth, srcHeight, dstWidth, dstHeight);
  const int32_t srcRow = srcWidth * kSample;
  const int32_t dstRow = dstWidth * kSample;
  const int32_t srcYStride = pickStride(in, srcRow, kSample, kMaxPad);
  const int32_t srcUVStride = pickStride(in, srcRow, kSample, kMaxPad);
  const int32_t dstYStride = pickStride(in, dstRow, kSample, kMaxPad);
  const int32_t dstUVStride = pickStride(in, dstRow, kSample, kMaxPad);
  auto pitch = [](int32_t stride, int32_t row) {
    return stride == 0 ? row : stride;
  };
  auto magnitude = [](int32_t stride, int32_t row) {
    return stride == 0 ? row : (stride < 0 ? -stride : stride);
  };

  const bool valid = srcWidth > 0 && srcHeight > 0 && dstWidth > 0 &&
                     dstHeight > 0 &&
                     ((srcWidth | srcHeight | dstWidth | dstHeight) & 1) == 0;
  const int32_t srcRows = valid ? srcHeight : 0;
  const int32_t dstRows = valid ? dstHeight : 0;
  const Plane srcY(srcRows, srcRow, pitch(srcYStride, srcRow));
  const Plane srcUV(srcRows / 2, srcRow, pitch(srcUVStride, srcRow));
  // Whole strides: the last row of a destination is a full stride too.
  const int32_t dstYPitch = magnitude(dstYStride, dstRow);
  const int32_t dstUVPitch = magnitude(dstUVStride, dstRow);
  const Plane dstY(dstRows, dstYPitch, pitch(dstYStride, dstRow));
  const Plane dstUV(dstRows / 2, dstUVPitch, pitch(dstUVStride, dstRow));
  fillBytes(in, srcY.bytes(), srcY.size());
  fillBytes(in, srcUV.bytes(), srcUV.size());
  std::memset(dstY.bytes(), kCanary, dstY.size());
  std::memset(dstUV.bytes(), kCanary, dstUV.size());

  const int32_t status =
      zel::neon::imgproc::resize_v00<T, T, layout, zel::INTERP_NEAREST, float,
                                     shift>(
          reinterpret_cast<const T*>(srcY.first()),
          reinterpret_cast<const T*>(srcUV.first()),
          reinterpret_cast<T*>(dstY.first()),
          reinterpret_cast<T*>(dstUV.first()), srcWidth, srcHeight, dstWidth,
          dstHeight, srcYStride, srcUVStride, dstYStride, dstUVStride);
  if (!valid) {
    if (status != STATUS_INVALID_ARGUMENT) fail("invalid size accepted");
    return;
  }
  if (status != 0) fail("valid resize refused");
  checkPlane(srcY, srcYStride, dstY, dstYStride, srcWidth, srcHeight, dstWidth,
             dstHeight, kSample);
  checkPlane(srcUV, srcUVStride, dstUV, dstUVStride, srcWidth / 2,
             srcHeight / 2, dstWidth / 2, dstHeight / 2, 2 * kSample);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  if (in.ConsumeBool()) {
    run<uint8_t, zel::YUV420SP_8BIT, 0>(in);
  } else {
    run<uint16_t, zel::YUV420SP_10BIT, 6>(in);
  }
  return 0;
}
