// zel::cpp::memory::copyRect_v00 and zel::cpp::imgproc::copyMakeBorder_v01
// over buffers of exactly the bytes the arguments reach. Every byte of each
// destination allocation is checked against a model built from a snapshot
// taken before the call.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "api/pavona_host.h"
#include "fuzz/fuzz_support.h"
#include "zel/cpp/imgproc/copyMakeBorder.h"
#include "zel/cpp/memory/copyRect.h"
#include "zel/types.h"

namespace {

using pavona::fuzz::fail;
using pavona::fuzz::fillBytes;
using pavona::fuzz::pickStride;

constexpr uint8_t kCanary = 0xC3;
// Padding of a row, in elements.
constexpr int kMaxPad = 16;

// One side of a rectangle copy: the block's rows lie at
// base + (row + i) × pitch + col, where base is the given pointer moved to
// the block's last row for a bottom-up stride. Offsets are from the pointer.
struct Side {
  int32_t stride;
  int32_t col;
  int32_t row;
  int64_t pitch;

  int64_t rowOffset(int32_t i, int32_t height) const {
    const int64_t base =
        stride < 0 ? (height - 1) * static_cast<int64_t>(stride) : 0;
    return base + (row + i) * pitch + col;
  }
};

Side pickSide(FuzzedDataProvider& in, int32_t width) {
  Side side;
  side.stride = pickStride(in, width, 1, kMaxPad);
  side.col = in.ConsumeIntegralInRange(0, 12);
  side.row = in.ConsumeIntegralInRange(0, 6);
  side.pitch =
      side.stride == 0 ? width : (side.stride < 0 ? -side.stride : side.stride);
  return side;
}

void fuzzCopyRect(FuzzedDataProvider& in) {
  const int32_t width = in.ConsumeIntegralInRange(1, 48);
  const int32_t height = in.ConsumeIntegralInRange(-1, 16);
  const Side src = pickSide(in, width);
  const Side dst = pickSide(in, width);
  const bool oneBuffer = in.ConsumeBool();
  const int32_t rows = height > 0 ? height : 0;

  // The bytes each side reaches, relative to its pointer.
  auto low = [&](const Side& s) { return rows ? s.rowOffset(0, rows) : 0; };
  auto high = [&](const Side& s) {
    return rows ? s.rowOffset(rows - 1, rows) + width : 0;
  };
  // In one buffer both pointers are the same address, as when an image is
  // restrided or a block moved in place.
  int64_t srcLow = low(src), srcHigh = high(src);
  int64_t dstLow = low(dst), dstHigh = high(dst);
  if (oneBuffer) {
    srcLow = dstLow = std::min(srcLow, dstLow);
    srcHigh = dstHigh = std::max(srcHigh, dstHigh);
  }
  std::vector<uint8_t> srcStore(static_cast<size_t>(srcHigh - srcLow));
  fillBytes(in, srcStore.data(), srcStore.size());
  std::vector<uint8_t> dstStore(static_cast<size_t>(dstHigh - dstLow), kCanary);
  std::vector<uint8_t>& dstBytes = oneBuffer ? srcStore : dstStore;
  // Exact heap blocks, so that a stray access is caught.
  std::unique_ptr<uint8_t[]> srcBlock(new uint8_t[srcStore.size()]);
  std::copy(srcStore.begin(), srcStore.end(), srcBlock.get());
  std::unique_ptr<uint8_t[]> dstOwn(new uint8_t[dstStore.size()]);
  std::copy(dstStore.begin(), dstStore.end(), dstOwn.get());
  uint8_t* dstBlock = oneBuffer ? srcBlock.get() : dstOwn.get();
  const uint8_t* srcPointer = srcBlock.get() - srcLow;
  uint8_t* dstPointer = dstBlock - dstLow;

  const bool nullSide = in.ConsumeIntegralInRange(0, 31) == 0;
  const int status = zel::cpp::memory::copyRect_v00<unsigned char>(
      nullSide ? nullptr : srcPointer, dstPointer, width, height, src.stride,
      dst.stride, src.col, src.row, dst.col, dst.row);
  if (nullSide) {
    if (status != STATUS_INVALID_ARGUMENT) fail("null source accepted");
    if (!std::equal(dstBytes.begin(), dstBytes.end(), dstBlock)) {
      fail("refused copy wrote");
    }
    return;
  }
  if (status != 0) fail("copy refused");

  // Overlapping blocks of different strides in one buffer are moved row by
  // row in one direction; rows of the source may then be overwritten before
  // they are read, and only memory safety is checked.
  const bool sameStart = low(src) == low(dst);
  const bool overlap =
      oneBuffer && low(src) < high(dst) && high(src) > low(dst);
  if (overlap && !sameStart && src.pitch != dst.pitch) return;
  std::vector<uint8_t> expected = dstBytes;
  for (int32_t i = 0; i < rows; ++i) {
    std::memcpy(expected.data() + (dst.rowOffset(i, rows) - dstLow),
                srcStore.data() + (src.rowOffset(i, rows) - srcLow), width);
  }
  if (!std::equal(expected.begin(), expected.end(), dstBlock)) {
    fail("copied block differs from the snapshot");
  }
}

void fuzzCopyMakeBorder(FuzzedDataProvider& in) {
  constexpr int cn = 3;
  const int32_t srcWidth = in.ConsumeIntegralInRange(1, 24);
  const int32_t srcHeight = in.ConsumeIntegralInRange(1, 16);
  const int32_t top = in.ConsumeIntegralInRange(0, 16);
  const int32_t bottom = in.ConsumeIntegralInRange(0, 16);
  const int32_t left = in.ConsumeIntegralInRange(0, 16);
  const int32_t right = in.ConsumeIntegralInRange(0, 16);
  const int32_t dstWidth = srcWidth + left + right;
  const int32_t dstHeight = srcHeight + top + bottom;
  const int32_t srcStride = pickStride(in, srcWidth * cn, 1, kMaxPad);
  const int32_t dstStride = pickStride(in, dstWidth * cn, 1, kMaxPad);
  const uint8_t colour[cn] = {in.ConsumeIntegral<uint8_t>(),
                              in.ConsumeIntegral<uint8_t>(),
                              in.ConsumeIntegral<uint8_t>()};
  const bool black = in.ConsumeBool();

  const int64_t srcPitch = srcStride == 0 ? srcWidth * cn : std::abs(srcStride);
  const int64_t dstPitch = dstStride == 0 ? dstWidth * cn : std::abs(dstStride);
  const pavona::fuzz::Plane src(srcHeight, srcWidth * cn,
                                srcStride < 0 ? -srcPitch : srcPitch);
  const pavona::fuzz::Plane dst(dstHeight, dstWidth * cn,
                                dstStride < 0 ? -dstPitch : dstPitch);
  fillBytes(in, src.bytes(), src.size());
  std::memset(dst.bytes(), kCanary, dst.size());

  const int status =
      zel::cpp::imgproc::copyMakeBorder_v01<unsigned char, cn, 1,
                                            zel::BORDER_CONSTANT>(
          src.first(), dst.first(), srcWidth, srcHeight, srcStride, dstStride,
          top, bottom, left, right, black ? nullptr : colour);
  if (status != 0) fail("copy and frame refused");

  // The model in memory order (lowest row first): frame rows, and beside
  // each source row the frame's left and right pieces; padding untouched.
  std::vector<uint8_t> expected(dst.size(), kCanary);
  std::vector<uint8_t> frameRow(static_cast<size_t>(dstWidth) * cn);
  for (int32_t x = 0; x < dstWidth; ++x) {
    for (int c = 0; c < cn; ++c) frameRow[x * cn + c] = black ? 0 : colour[c];
  }
  for (int32_t y = 0; y < dstHeight; ++y) {
    uint8_t* row = expected.data() + y * dstPitch;
    std::memcpy(row, frameRow.data(), frameRow.size());
    if (y >= top && y < top + srcHeight) {
      std::memcpy(row + left * cn, src.bytes() + (y - top) * srcPitch,
                  static_cast<size_t>(srcWidth) * cn);
    }
  }
  if (std::memcmp(dst.bytes(), expected.data(), dst.size()) != 0) {
    fail("framed image differs from the model");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  if (in.ConsumeBool()) {
    fuzzCopyRect(in);
  } else {
    fuzzCopyMakeBorder(in);
  }
  return 0;
}
