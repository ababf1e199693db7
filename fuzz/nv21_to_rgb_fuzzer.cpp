// pavona::nv21_to_rgb, all three instances, over planes of exactly the bytes
// the arguments describe. The result must be the scalar twin's, byte for
// byte over the whole output allocation (floats never written keep their
// canary), and a refused call must write nothing.
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "colorconv/nv21_to_rgb.h"
#include "fuzz/fuzz_support.h"

namespace {

using pavona::fuzz::fail;
using pavona::fuzz::fillBytes;
using pavona::fuzz::Plane;

constexpr uint8_t kCanary = 0x7F;  // 0x7F7F7F7F is no whole number in 0..1023

// A source stride in bytes: at least a row of samples, or bottom-up (only
// the chroma stride, which the entry does not check), or short of a row (the
// entry refuses it for luma, and for 16-bit samples lets rows overlap).
int32_t pickSourceStride(FuzzedDataProvider& in, int32_t width, int sample,
                         bool mayBeNegative) {
  const int32_t pitch =
      width * sample + sample * in.ConsumeIntegralInRange(0, 12);
  switch (in.ConsumeIntegralInRange(0, 3)) {
    case 0:
    case 1:
      return pitch;
    case 2:
      return mayBeNegative ? -pitch : pitch;
    default:
      return sample * in.ConsumeIntegralInRange(0, std::max(width, 0));
  }
}

template <typename T, bool uFirst, int bits>
void run(FuzzedDataProvider& in) {
  constexpr int kSample = sizeof(T);
  const int32_t width = in.ConsumeIntegralInRange(-2, 72);
  const int32_t height = in.ConsumeIntegralInRange(-2, 24);
  const int32_t srcYStride = pickSourceStride(in, width, kSample, false);
  const int32_t srcUVStride = pickSourceStride(in, width, kSample, true);
  // Whole floats; from below 3 × width (refused) through the loose range
  // the entry accepts (rows overlap) to padded rows of 12 bytes a pixel.
  const int32_t dstStride =
      4 * in.ConsumeIntegralInRange(width / 2, 3 * width + 8);
  const bool nullPlane = in.ConsumeIntegralInRange(0, 31) == 0;

  const bool valid = !nullPlane && 3 * width <= dstStride && width >= 1 &&
                     height >= 1 && srcYStride >= width;
  const int32_t evenWidth = width & ~1;
  const int32_t evenHeight = valid ? height & ~1 : 0;
  const Plane srcY(evenHeight, evenWidth * kSample, srcYStride);
  const Plane srcUV(evenHeight / 2, evenWidth * kSample, srcUVStride);
  const Plane dst(evenHeight, 12 * evenWidth, dstStride);
  const Plane twin(evenHeight, 12 * evenWidth, dstStride);
  fillBytes(in, srcY.bytes(), srcY.size());
  fillBytes(in, srcUV.bytes(), srcUV.size());
  std::memset(dst.bytes(), kCanary, dst.size());
  std::memset(twin.bytes(), kCanary, twin.size());

  const int status = pavona::nv21_to_rgb<T, uFirst, bits, 0>(
      reinterpret_cast<const T*>(srcY.first()),
      nullPlane ? nullptr : reinterpret_cast<const T*>(srcUV.first()),
      reinterpret_cast<float*>(dst.first()), width, height, srcYStride,
      srcUVStride, dstStride);
  if (!valid) {
    if (status != -1) fail("refusable arguments accepted");
    return;
  }
  if (status != 0) fail("valid conversion refused");
  pavona::internal::nv21_to_rgb_impl_C<T, uFirst, bits, 0>(
      reinterpret_cast<const T*>(srcY.first()),
      reinterpret_cast<const T*>(srcUV.first()),
      reinterpret_cast<float*>(twin.first()), evenWidth, evenHeight, srcYStride,
      srcUVStride, dstStride);
  if (std::memcmp(dst.bytes(), twin.bytes(), dst.size()) != 0) {
    fail("differs from the scalar twin");
  }
  constexpr float kMax = static_cast<float>((1 << bits) - 1);
  for (size_t at = 0; at + 4 <= dst.size(); at += 4) {
    float value;
    std::memcpy(&value, dst.bytes() + at, sizeof value);
    const bool whole = value >= 0 && value <= kMax &&
                       value == static_cast<float>(static_cast<int>(value));
    uint32_t raw;
    std::memcpy(&raw, &value, sizeof raw);
    if (!whole && raw != 0x7F7F7F7Fu)
      fail("output is not a clamped whole number");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  switch (in.ConsumeIntegralInRange(0, 2)) {
    case 0:
      run<uint8_t, false, 8>(in);
      break;
    case 1:
      run<uint8_t, true, 8>(in);
      break;
    default:
      run<uint16_t, true, 10>(in);
      break;
  }
  return 0;
}
