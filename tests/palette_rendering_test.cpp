// The preview canvas as the engine draws it: geometry, frame, swatches and
// the byte conversion of points and centres.
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "src/KImages.h"
#include "tests/support/capture.h"

namespace {

struct Canvas {
  std::vector<uint8_t> pixels;
  int width = 0, height = 0, stride = 0;
};

struct Rgb {
  uint8_t r, g, b;
  bool operator==(const Rgb& o) const {
    return r == o.r && g == o.g && b == o.b;
  }
};

// An engine whose working size is w x h, with k centres and points set by
// the test.
class Engine {
 public:
  Engine(int w, int h, int k) {
    InitParamData init{};
    init.width = w * 32;
    init.height = h * 32;
    init.format = IMAGE_FORMAT_NV21;
    pavona::testing::captureOutput([&] { EXPECT_EQ(engine.init(&init), 0); });
    EXPECT_EQ(engine.m_downWidth, w);
    EXPECT_EQ(engine.m_downHeight, h);
    engine.m_colorNum = k;
  }
  Canvas draw(IMAGE_FORMAT_TYPE format) {
    const KImages::CanvasSize size = engine.paletteCanvasSize();
    Canvas c{std::vector<uint8_t>(size.stride * size.height), size.width,
             size.height, size.stride};
    std::vector<uint8_t> working(3 * engine.m_downWidth * engine.m_downHeight);
    engine.drawPalette(format, working.data(), c.pixels.data());
    return c;
  }
  KImages engine;
};

Rgb pixel(const Canvas& c, int x, int y) {
  const uint8_t* p = &c.pixels[static_cast<size_t>(y) * c.stride + 3 * x];
  return {p[0], p[1], p[2]};
}

// Expected canvas built from the layout rules alone: white everywhere, the
// image at (15, 15), swatch i over the given columns in rows h+20..h+69.
std::vector<Rgb> expectedCanvas(int w, int h, const std::vector<Rgb>& image,
                                const std::vector<std::pair<int, int>>& cols,
                                const std::vector<Rgb>& swatch) {
  const int cw = w + 30, ch = h + 80;
  std::vector<Rgb> canvas(static_cast<size_t>(cw) * ch, Rgb{255, 255, 255});
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x)
      canvas[(y + 15) * cw + x + 15] = image[y * w + x];
  }
  for (size_t i = 0; i < cols.size(); ++i) {
    for (int y = h + 20; y <= h + 69; ++y) {
      for (int x = cols[i].first; x <= cols[i].second; ++x) {
        canvas[y * cw + x] = swatch[i];
      }
    }
  }
  return canvas;
}

void expectCanvas(const Canvas& c, const std::vector<Rgb>& expected) {
  int mismatches = 0;
  for (int y = 0; y < c.height; ++y) {
    for (int x = 0; x < c.width; ++x) {
      if (!(pixel(c, x, y) == expected[y * c.width + x]) && ++mismatches < 5) {
        ADD_FAILURE() << "pixel (" << x << ", " << y << ")";
      }
    }
  }
  EXPECT_EQ(mismatches, 0);
}

TEST(PaletteRendering, FortyByThirtyWithThreeSwatches) {
  Engine e(40, 30, 3);
  std::vector<Rgb> image(40 * 30);
  for (int i = 0; i < 40 * 30; ++i) {
    const Rgb c{static_cast<uint8_t>(i % 251), static_cast<uint8_t>(i % 7 * 30),
                static_cast<uint8_t>(255 - i % 256)};
    image[i] = c;
    e.engine.m_points[i] = {c.r + 0.75f, static_cast<float>(c.g), c.b + 0.25f};
  }
  e.engine.m_clusters[0] = {10, 20, 30};
  e.engine.m_clusters[1] = {200.9f, 100, 0};
  e.engine.m_clusters[2] = {0, 0, 254.5f};
  const Canvas canvas = e.draw(IMAGE_FORMAT_NV21);
  EXPECT_EQ(canvas.width, 70);
  EXPECT_EQ(canvas.height, 110);
  EXPECT_EQ(canvas.stride, 210);
  expectCanvas(canvas,
               expectedCanvas(40, 30, image, {{10, 21}, {27, 38}, {44, 55}},
                              {{10, 20, 30}, {200, 100, 0}, {0, 0, 254}}));
}

TEST(PaletteRendering, BytesAreTruncatedAndTenBitShifted) {
  Engine e(2, 2, 1);
  for (int i = 0; i < 4; ++i) e.engine.m_points[i] = {1023, 512.7f, 3.9f};
  e.engine.m_clusters[0] = {1023, 512.7f, 3.9f};
  const Canvas tenBit = e.draw(IMAGE_FORMAT_YUV420SP_10BIT);
  EXPECT_EQ(pixel(tenBit, 15, 15), (Rgb{255, 128, 0}));
  const int swatchX = 5 + (32 / 2) / 3;  // first column of swatch 0
  EXPECT_EQ(pixel(tenBit, swatchX, 2 + 20), (Rgb{255, 128, 0}));

  e.engine.m_clusters[0] = {127.9f, 0.5f, 255.0f};
  EXPECT_EQ(pixel(e.draw(IMAGE_FORMAT_NV21), swatchX, 2 + 20),
            (Rgb{127, 0, 255}));
}

}  // namespace
