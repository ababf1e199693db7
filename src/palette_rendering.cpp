// The preview: the working image in a white frame with one swatch per
// cluster centre underneath. Drawn in scratch memory and released again.
//
//        <------------- w + 30 ------------->
//   0    +----------------------------------+
//        |            white, 15 rows        |
//   15   |  15  +--------------------+  15  |
//        |      |   working image    |      |
//        |      |       w x h        |      |
//   h+15 |      +--------------------+      |
//   h+20 |   [sw0]   [sw1]   [sw2]   ...    |  swatches, 50 rows;
//   h+70 |                                  |  swatch i spans columns
//   h+80 +----------------------------------+  5+i*pitch+third ..
//   5+(i+1)*pitch-1
#include <cstdint>
#include <limits>
#include <memory>

#include "src/KImages.h"
#include "src/size32.h"
#include "zel/cpp/imgproc/copyMakeBorder.h"
#include "zel/types.h"

namespace {

constexpr int kFrameTop = 15;
constexpr int kFrameBottom = 65;
constexpr int kFrameLeft = 15;
constexpr int kFrameRight = 15;
constexpr int kSwatchGap = 5;  // white rows between image and swatches
constexpr int kSwatchRows = 50;
constexpr int kSwatchOrigin = 5;

// Truncates toward zero, saturating, NaN to 0 (the AArch64 conversion),
// brings 10-bit values to 8 bits, keeps the low byte: no rounding, no clamp.
uint8_t channelByte(float value, bool tenBit) {
  int32_t whole;
  if (value != value) {
    whole = 0;
  } else if (value >= 2147483648.0f) {
    whole = std::numeric_limits<int32_t>::max();
  } else if (value < -2147483648.0f) {
    whole = std::numeric_limits<int32_t>::min();
  } else {
    whole = static_cast<int32_t>(value);
  }
  if (tenBit) {
    whole = static_cast<int32_t>(static_cast<uint32_t>(whole) >> 2);
  }
  return static_cast<uint8_t>(whole);
}

}  // namespace

KImages::CanvasSize KImages::paletteCanvasSize() const {
  const int32_t width = m_downWidth + kFrameLeft + kFrameRight;
  return {width, m_downHeight + kFrameTop + kFrameBottom, 3 * width};
}

void KImages::displayPalette(const char* /*name*/, IMAGE_FORMAT_TYPE format) {
  const CanvasSize size = paletteCanvasSize();
  // Declared in this order so the canvas is released first.
  std::unique_ptr<uint8_t[]> working(
      new uint8_t[pavona::exactInt32(int64_t{3} * m_downWidth * m_downHeight)]);
  std::unique_ptr<uint8_t[]> canvas(
      new uint8_t[pavona::exactInt32(int64_t{size.stride} * size.height)]);
  drawPalette(format, working.get(), canvas.get());
}

void KImages::drawPalette(IMAGE_FORMAT_TYPE format, uint8_t* working,
                          uint8_t* canvas) const {
  const int w = m_downWidth;
  const int h = m_downHeight;
  const int k = m_colorNum;
  const bool tenBit = format == IMAGE_FORMAT_YUV420SP_10BIT;
  const int canvasWidth = paletteCanvasSize().width;
  const int canvasStride = paletteCanvasSize().stride;

  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) {
      const _Point& p = m_points[y * w + x];
      uint8_t* out = &working[3 * (y * w + x)];
      out[0] = channelByte(p.r, tenBit);
      out[1] = channelByte(p.g, tenBit);
      out[2] = channelByte(p.b, tenBit);
    }
  }

  const uint8_t white[3] = {255, 255, 255};
  if (w >= 1 && h >= 1) {
    zel::cpp::imgproc::copyMakeBorder_v01<uint8_t, 3, 1, zel::BORDER_CONSTANT>(
        working, canvas, w, h, 3 * w, canvasStride, kFrameTop, kFrameBottom,
        kFrameLeft, kFrameRight, white);
  }

  const int pitch = canvasWidth / (k + 1);
  const int third = pitch / 3;
  const int firstRow = h + kFrameTop + kSwatchGap;
  for (int i = 0; i < k; ++i) {
    const int x0 = kSwatchOrigin + i * pitch + third;
    const int x1 = kSwatchOrigin + (i + 1) * pitch;
    if (x0 >= x1) continue;
    const uint8_t rgb[3] = {channelByte(m_clusters[i].r, tenBit),
                            channelByte(m_clusters[i].g, tenBit),
                            channelByte(m_clusters[i].b, tenBit)};
    for (int y = firstRow; y < firstRow + kSwatchRows; ++y) {
      uint8_t* row = canvas + y * canvasStride;
      for (int x = x0; x < x1; ++x) {
        row[3 * x + 0] = rgb[0];
        row[3 * x + 1] = rgb[1];
        row[3 * x + 2] = rgb[2];
      }
    }
  }
}
