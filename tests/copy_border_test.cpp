#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <new>
#include <vector>

#include "zel/cpp/imgproc/copyMakeBorder.h"
#include "zel/cpp/memory/copyRect.h"

// Array allocations are counted while a test arms the counter, and the one
// numbered gFailAt (from 1) throws: the border kernel's allocations are
// observable only from here.
namespace {
bool gArmed = false;
int gArrayNews = 0;
int gLiveArrays = 0;
int gFailAt = 0;
}  // namespace

void* operator new[](std::size_t size) {
  if (gArmed) {
    if (++gArrayNews == gFailAt) throw std::bad_alloc();
    ++gLiveArrays;
  }
  if (void* p = std::malloc(size == 0 ? 1 : size)) return p;
  throw std::bad_alloc();
}

void operator delete[](void* p) noexcept {
  if (gArmed && p != nullptr) --gLiveArrays;
  std::free(p);
}

void operator delete[](void* p, std::size_t) noexcept { operator delete[](p); }

namespace {

using zel::cpp::memory::copyRect_v00;

std::vector<uint8_t> pattern(size_t n) {
  std::vector<uint8_t> v(n);
  for (size_t i = 0; i < n; ++i) v[i] = static_cast<uint8_t>(i * 7 + 3);
  return v;
}

TEST(CopyRect, NullPointerReturnsInvalidArgument) {
  const std::vector<uint8_t> src = pattern(64);
  std::vector<uint8_t> dst(64, 0xEE);
  EXPECT_EQ(769,
            copyRect_v00<uint8_t>(nullptr, dst.data(), 8, 8, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(769,
            copyRect_v00<uint8_t>(src.data(), nullptr, 8, 8, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(dst, std::vector<uint8_t>(64, 0xEE));
}

TEST(CopyRect, ZeroStridesCopyOnePackedBlock) {
  const std::vector<uint8_t> src = pattern(60);
  std::vector<uint8_t> dst(60, 0xEE);
  EXPECT_EQ(0, copyRect_v00<uint8_t>(src.data(), dst.data(), 12, 4, 0, 0, 0, 0,
                                     0, 0));
  for (size_t i = 0; i < dst.size(); ++i) {
    EXPECT_EQ(dst[i], i < 48 ? src[i] : 0xEE) << i;
  }
}

TEST(CopyRect, BlockLandsAtOffsetsOfPaddedImages) {
  const std::vector<uint8_t> src = pattern(10 * 8);
  std::vector<uint8_t> dst(12 * 9, 0xEE);
  // 4 x 3 block from column 2, row 1 to column 5, row 4.
  EXPECT_EQ(0, copyRect_v00<uint8_t>(src.data(), dst.data(), 4, 3, 10, 12, 2, 1,
                                     5, 4));
  for (int r = 0; r < 9; ++r) {
    for (int c = 0; c < 12; ++c) {
      const bool inside = r >= 4 && r < 7 && c >= 5 && c < 9;
      const uint8_t want = inside ? src[(r - 3) * 10 + (c - 3)] : 0xEE;
      EXPECT_EQ(dst[r * 12 + c], want) << r << "," << c;
    }
  }
}

// In-place moves: the destination must end up with the rows as they were
// before the call, whichever way the areas overlap. Width 10 fills the
// stride, so those blocks are contiguous.
TEST(CopyRect, InPlaceMovesSurviveOverlap) {
  struct Move {
    int width, srcCol, srcRow, dstCol, dstRow;
  };
  const Move moves[] = {{6, 0, 0, 0, 1},  {6, 0, 1, 0, 0},  {6, 0, 0, 3, 0},
                        {6, 3, 1, 0, 0},  {6, 1, 0, 2, 1},  {10, 0, 0, 0, 1},
                        {10, 0, 1, 0, 0}, {10, 0, 0, 3, 0}, {10, 4, 1, 0, 0}};
  for (Move m : moves) {
    SCOPED_TRACE(::testing::Message()
                 << "width " << m.width << ": " << m.srcCol << "," << m.srcRow
                 << " -> " << m.dstCol << "," << m.dstRow);
    const int stride = 10;
    const std::vector<uint8_t> before = pattern(stride * 6);
    std::vector<uint8_t> image = before;
    EXPECT_EQ(0, copyRect_v00<uint8_t>(image.data(), image.data(), m.width, 4,
                                       stride, stride, m.srcCol, m.srcRow,
                                       m.dstCol, m.dstRow));
    std::vector<uint8_t> want = before;
    for (int r = 0; r < 4; ++r) {
      for (int c = 0; c < m.width; ++c) {
        want[(m.dstRow + r) * stride + m.dstCol + c] =
            before[(m.srcRow + r) * stride + m.srcCol + c];
      }
    }
    EXPECT_EQ(image, want);
  }
}

TEST(CopyRect, SameStartRestridesInPlace) {
  const std::vector<uint8_t> before = pattern(130);
  // Equal strides: nothing to do.
  std::vector<uint8_t> image = before;
  EXPECT_EQ(0, copyRect_v00<uint8_t>(image.data(), image.data(), 25, 3, 30, 30,
                                     0, 0, 0, 0));
  EXPECT_EQ(image, before);

  // Widening (30 -> 40) and narrowing (40 -> 30): row i of 25 elements moves
  // from i * srcStride to i * dstStride, each read before it is overwritten.
  for (auto [srcStride, dstStride] : {std::pair{30, 40}, {40, 30}}) {
    SCOPED_TRACE(::testing::Message() << srcStride << " -> " << dstStride);
    std::vector<uint8_t> restrided = before;
    EXPECT_EQ(0, copyRect_v00<uint8_t>(restrided.data(), restrided.data(), 25,
                                       3, srcStride, dstStride, 0, 0, 0, 0));
    std::vector<uint8_t> want = before;
    for (int i = 0; i < 3; ++i) {
      for (int c = 0; c < 25; ++c) {
        want[i * dstStride + c] = before[i * srcStride + c];
      }
    }
    EXPECT_EQ(restrided, want);
  }
}

TEST(CopyRect, NegativeStrideOnOneSideFlipsBlock) {
  const int w = 5;
  const int h = 4;
  const std::vector<uint8_t> buffer = pattern(w * h);
  // Rows at decreasing addresses: image row i is buffer row h - 1 - i.
  const uint8_t* bottomUp = buffer.data() + (h - 1) * w;

  std::vector<uint8_t> dst(w * h, 0xEE);
  EXPECT_EQ(
      0, copyRect_v00<uint8_t>(bottomUp, dst.data(), w, h, -w, w, 0, 0, 0, 0));
  EXPECT_EQ(dst, buffer);  // image row i lands in row h - 1 - i

  // Negative on both sides: each is normalised, so the block keeps its
  // orientation.
  std::vector<uint8_t> both(w * h, 0xEE);
  EXPECT_EQ(0, copyRect_v00<uint8_t>(bottomUp, both.data() + (h - 1) * w, w, h,
                                     -w, -w, 0, 0, 0, 0));
  EXPECT_EQ(both, buffer);
}

// The 70 x 110 frame round a 40 x 30 interior.
constexpr int kSrcW = 40;
constexpr int kSrcH = 30;
constexpr int kTop = 15;
constexpr int kBottom = 65;
constexpr int kLeft = 15;
constexpr int kRight = 15;
constexpr int kDstW = kSrcW + kLeft + kRight;
constexpr int kDstH = kSrcH + kTop + kBottom;
constexpr uint8_t kUntouched = 0x5A;

bool inInterior(int x, int r) {
  return x >= kLeft && x < kLeft + kSrcW && r >= kTop && r < kTop + kSrcH;
}

int paintFrame(uint8_t* dst, int stride, const uint8_t* value) {
  return zel::cpp::imgproc::internal_copyMakeBorder_v01::
      copyMakeBorder_v01_impl<uint8_t, 3, 1, zel::BORDER_CONSTANT>(
          nullptr, dst, kSrcW, kSrcH, kDstW, kDstH, kSrcW * 3, stride, kTop,
          kBottom, kLeft, kRight, value);
}

// Frame pixels hold `frame`, interior pixels and row padding `kUntouched`.
void expectFrame(const std::vector<uint8_t>& dst, int stride,
                 const uint8_t frame[3]) {
  for (int r = 0; r < kDstH; ++r) {
    for (int i = 0; i < stride; ++i) {
      const int x = i / 3;
      const uint8_t want =
          x >= kDstW || inInterior(x, r) ? kUntouched : frame[i % 3];
      ASSERT_EQ(dst[r * stride + i], want) << "row " << r << " element " << i;
    }
  }
}

TEST(BorderKernel, PaintsFrameAndLeavesInterior) {
  const uint8_t white[3] = {255, 255, 255};
  const uint8_t colour[3] = {10, 20, 30};
  const uint8_t black[3] = {0, 0, 0};
  const int stride = kDstW * 3 + 6;
  for (const uint8_t* value :
       {white, colour, static_cast<const uint8_t*>(nullptr)}) {
    std::vector<uint8_t> dst(stride * kDstH, kUntouched);
    // The source is never read: a null one does no harm.
    EXPECT_EQ(0, paintFrame(dst.data(), stride, value));
    expectFrame(dst, stride, value == nullptr ? black : value);
  }
}

struct ArmAllocations {
  explicit ArmAllocations(int failAt) {
    gArrayNews = 0;
    gLiveArrays = 0;
    gFailAt = failAt;
    gArmed = true;
  }
  ~ArmAllocations() { gArmed = false; }
};

TEST(BorderKernel, FreesTemplateRowAndTable) {
  const uint8_t white[3] = {255, 255, 255};
  std::vector<uint8_t> dst(kDstW * 3 * kDstH, kUntouched);
  {
    ArmAllocations armed(0);
    EXPECT_EQ(0, paintFrame(dst.data(), kDstW * 3, white));
  }
  EXPECT_EQ(gArrayNews, 2);
  EXPECT_EQ(gLiveArrays, 0);

  for (int failAt : {1, 2}) {
    SCOPED_TRACE(failAt);
    std::vector<uint8_t> untouched(dst.size(), kUntouched);
    {
      ArmAllocations armed(failAt);
      EXPECT_THROW(paintFrame(untouched.data(), kDstW * 3, white),
                   std::bad_alloc);
    }
    EXPECT_EQ(gLiveArrays, 0);
    EXPECT_EQ(untouched, std::vector<uint8_t>(dst.size(), kUntouched));
  }
}

int copyAndFrame(const uint8_t* src, uint8_t* dst, int srcStride, int dstStride,
                 const uint8_t* value) {
  return zel::cpp::imgproc::copyMakeBorder_v01<uint8_t, 3, 1,
                                               zel::BORDER_CONSTANT>(
      src, dst, kSrcW, kSrcH, srcStride, dstStride, kTop, kBottom, kLeft,
      kRight, value);
}

TEST(CopyMakeBorder, CopiesInteriorAtOffsetAndFrames) {
  const uint8_t white[3] = {255, 255, 255};
  const std::vector<uint8_t> src = pattern(kSrcW * 3 * kSrcH);
  std::vector<uint8_t> dst(kDstW * 3 * kDstH, kUntouched);
  EXPECT_EQ(0, copyAndFrame(src.data(), dst.data(), 0, 0, white));
  for (int r = 0; r < kDstH; ++r) {
    for (int i = 0; i < kDstW * 3; ++i) {
      const int x = i / 3;
      const uint8_t want =
          inInterior(x, r)
              ? src[(r - kTop) * kSrcW * 3 + (x - kLeft) * 3 + i % 3]
              : 255;
      ASSERT_EQ(dst[r * kDstW * 3 + i], want) << "row " << r << " " << i;
    }
  }

  // A destination given bottom-up is normalised to the same memory.
  std::vector<uint8_t> bottomUp(dst.size(), kUntouched);
  EXPECT_EQ(
      0, copyAndFrame(src.data(), bottomUp.data() + (kDstH - 1) * kDstW * 3, 0,
                      -kDstW * 3, white));
  EXPECT_EQ(bottomUp, dst);
}

TEST(CopyMakeBorder, FailedCopyPaintsNothing) {
  const uint8_t white[3] = {255, 255, 255};
  std::vector<uint8_t> dst(kDstW * 3 * kDstH, kUntouched);
  EXPECT_EQ(769, copyAndFrame(nullptr, dst.data(), 0, 0, white));
  EXPECT_EQ(dst, std::vector<uint8_t>(dst.size(), kUntouched));
}

}  // namespace
