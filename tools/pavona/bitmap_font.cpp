#include "tools/pavona/bitmap_font.h"

#include <cstring>

namespace pavona::tool {
namespace {

// Rows top to bottom, '#' set.
const char* glyph(char c) {
  // clang-format off
  switch (c) {
    case '0': return "###" "#.#" "#.#" "#.#" "###";
    case '1': return ".#." "##." ".#." ".#." "###";
    case '2': return "###" "..#" "###" "#.." "###";
    case '3': return "###" "..#" "###" "..#" "###";
    case '4': return "#.#" "#.#" "###" "..#" "..#";
    case '5': return "###" "#.." "###" "..#" "###";
    case '6': return "###" "#.." "###" "#.#" "###";
    case '7': return "###" "..#" "..#" "..#" "..#";
    case '8': return "###" "#.#" "###" "#.#" "###";
    case '9': return "###" "#.#" "###" "..#" "###";
    case '.': return "..." "..." "..." "..." ".#.";
    case ':': return "..." ".#." "..." ".#." "...";
    case 's': return "..." "###" "##." "..#" "###";
    default: return "..." "..." "..." "..." "...";
  }
  // clang-format on
}

}  // namespace

int textWidth(const std::string& text, int scale) {
  if (text.empty()) return 0;
  return static_cast<int>(text.size()) * (kGlyphWidth + 1) * scale - scale;
}

void drawText(RgbImage& image, int x, int y, const std::string& text, int scale,
              uint8_t grey) {
  for (const char c : text) {
    const char* pattern = glyph(c);
    for (int row = 0; row < kGlyphHeight * scale; ++row) {
      for (int col = 0; col < kGlyphWidth * scale; ++col) {
        const int px = x + col, py = y + row;
        if (pattern[row / scale * kGlyphWidth + col / scale] != '#' || px < 0 ||
            py < 0 || px >= image.width || py >= image.height) {
          continue;
        }
        std::memset(&image.pixels[3 * (size_t(py) * image.width + px)], grey,
                    3);
      }
    }
    x += (kGlyphWidth + 1) * scale;
  }
}

}  // namespace pavona::tool
