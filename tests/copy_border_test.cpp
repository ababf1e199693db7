// The rect copy and the border that frame the preview canvas.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "zel/cpp/imgproc/copyMakeBorder.h"
#include "zel/cpp/memory/copyRect.h"

namespace {

using zel::cpp::memory::copyRect_v00;

std::vector<uint8_t> pattern(size_t n) {
  std::vector<uint8_t> v(n);
  for (size_t i = 0; i < n; ++i) v[i] = static_cast<uint8_t>(i * 7 + 3);
  return v;
}

// Every block ends up as if copied through a temporary: into a second
// image, or within one image whichever way the areas overlap (width 10
// fills the stride, so those blocks are contiguous), or restrided in place
// from the same start. Stride 0 means packed rows.
TEST(CopyRect, BlocksLandAsIfCopiedThroughATemporary) {
  const struct {
    int w, h, srcStride, dstStride, srcCol, srcRow, dstCol, dstRow;
    bool inPlace;
  } cases[] = {
      {12, 4, 0, 0, 0, 0, 0, 0, false},  {4, 3, 10, 12, 2, 1, 5, 4, false},
      {6, 4, 10, 10, 0, 0, 0, 1, true},  {6, 4, 10, 10, 0, 1, 0, 0, true},
      {6, 4, 10, 10, 0, 0, 3, 0, true},  {6, 4, 10, 10, 3, 1, 0, 0, true},
      {6, 4, 10, 10, 1, 0, 2, 1, true},  {10, 4, 10, 10, 0, 0, 0, 1, true},
      {10, 4, 10, 10, 0, 1, 0, 0, true}, {10, 4, 10, 10, 0, 0, 3, 0, true},
      {10, 4, 10, 10, 4, 1, 0, 0, true}, {25, 3, 30, 30, 0, 0, 0, 0, true},
      {25, 3, 30, 40, 0, 0, 0, 0, true}, {25, 3, 40, 30, 0, 0, 0, 0, true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message()
                 << c.w << "x" << c.h << " strides " << c.srcStride << ","
                 << c.dstStride << ": " << c.srcCol << "," << c.srcRow << " -> "
                 << c.dstCol << "," << c.dstRow);
    const int ss = c.srcStride == 0 ? c.w : c.srcStride;
    const int ds = c.dstStride == 0 ? c.w : c.dstStride;
    const std::vector<uint8_t> src = pattern(160);
    std::vector<uint8_t> dst =
        c.inPlace ? src : std::vector<uint8_t>(160, 0xEE);
    std::vector<uint8_t> want = dst;
    for (int r = 0; r < c.h; ++r) {
      for (int x = 0; x < c.w; ++x) {
        want[(c.dstRow + r) * ds + c.dstCol + x] =
            src[(c.srcRow + r) * ss + c.srcCol + x];
      }
    }
    EXPECT_EQ(
        0, copyRect_v00<uint8_t>(c.inPlace ? dst.data() : src.data(),
                                 dst.data(), c.w, c.h, c.srcStride, c.dstStride,
                                 c.srcCol, c.srcRow, c.dstCol, c.dstRow));
    EXPECT_EQ(dst, want);
  }
}

// The 70 x 110 frame round a 40 x 30 interior, 3 elements a pixel.
constexpr int kSrcW = 40, kSrcH = 30, kTop = 15, kBottom = 65, kSide = 15;
constexpr int kDstW = kSrcW + 2 * kSide, kDstH = kSrcH + kTop + kBottom;
constexpr uint8_t kUntouched = 0x5A;

bool inInterior(int x, int r) {
  return x >= kSide && x < kSide + kSrcW && r >= kTop && r < kTop + kSrcH;
}

int paintFrame(uint8_t* dst, int stride, const uint8_t* value) {
  return zel::cpp::imgproc::internal_copyMakeBorder_v01::
      copyMakeBorder_v01_impl<uint8_t, 3, 1, zel::BORDER_CONSTANT>(
          nullptr, dst, kSrcW, kSrcH, kDstW, kDstH, kSrcW * 3, stride, kTop,
          kBottom, kSide, kSide, value);
}

int copyAndFrame(const uint8_t* src, uint8_t* dst, int dstStride) {
  const uint8_t white[3] = {255, 255, 255};
  return zel::cpp::imgproc::copyMakeBorder_v01<uint8_t, 3, 1,
                                               zel::BORDER_CONSTANT>(
      src, dst, kSrcW, kSrcH, 0, dstStride, kTop, kBottom, kSide, kSide, white);
}

// Frame pixels hold `frame`; the interior holds `interior` (or, when null,
// is untouched) and so does row padding.
void expectFrame(const std::vector<uint8_t>& dst, int stride,
                 const uint8_t* frame, const uint8_t* interior) {
  for (int r = 0; r < kDstH; ++r) {
    for (int i = 0; i < stride; ++i) {
      const int x = i / 3;
      uint8_t want = kUntouched;
      if (x < kDstW && !inInterior(x, r)) {
        want = frame[i % 3];
      } else if (x < kDstW && interior != nullptr) {
        want = interior[(r - kTop) * kSrcW * 3 + (x - kSide) * 3 + i % 3];
      }
      ASSERT_EQ(dst[r * stride + i], want) << "row " << r << " element " << i;
    }
  }
}

TEST(BorderKernel, PaintsFrameAndLeavesInterior) {
  const uint8_t white[3] = {255, 255, 255}, colour[3] = {10, 20, 30},
                black[3] = {0, 0, 0};
  const int stride = kDstW * 3 + 6;
  for (const uint8_t* value : {white, colour, (const uint8_t*)nullptr}) {
    std::vector<uint8_t> dst(stride * kDstH, kUntouched);
    // The source is never read: a null one does no harm.
    EXPECT_EQ(0, paintFrame(dst.data(), stride, value));
    expectFrame(dst, stride, value == nullptr ? black : value, nullptr);
  }
}

TEST(CopyMakeBorder, CopiesInteriorAtOffsetAndFrames) {
  const uint8_t white[3] = {255, 255, 255};
  const std::vector<uint8_t> src = pattern(kSrcW * 3 * kSrcH);
  std::vector<uint8_t> dst(kDstW * 3 * kDstH, kUntouched);
  EXPECT_EQ(0, copyAndFrame(src.data(), dst.data(), 0));
  expectFrame(dst, kDstW * 3, white, src.data());
  // A destination given bottom-up is normalised to the same memory.
  std::vector<uint8_t> bottomUp(dst.size(), kUntouched);
  EXPECT_EQ(0,
            copyAndFrame(src.data(), bottomUp.data() + (kDstH - 1) * kDstW * 3,
                         -kDstW * 3));
  EXPECT_EQ(bottomUp, dst);
  // A failed copy paints nothing.
  std::vector<uint8_t> untouched(dst.size(), kUntouched);
  EXPECT_EQ(769, copyAndFrame(nullptr, untouched.data(), 0));
  EXPECT_EQ(untouched, std::vector<uint8_t>(dst.size(), kUntouched));
}

}  // namespace
