// Digits drawn into pictures without a font library: a 3 x 5 pixel font
// of the characters time labels need.
#ifndef PAVONA_TOOLS_PAVONA_BITMAP_FONT_H_
#define PAVONA_TOOLS_PAVONA_BITMAP_FONT_H_

#include <cstdint>
#include <string>

#include "tools/pavona/rgb_image.h"

namespace pavona::tool {

inline constexpr int kGlyphWidth = 3;
inline constexpr int kGlyphHeight = 5;

// Width in pixels of `text` drawn at `scale`, one blank column between
// characters.
int textWidth(const std::string& text, int scale);

// Draws "0"-"9", ".", ":" and "s" with the top left at (x, y), each font
// pixel a scale x scale square of `grey`; other characters are left blank
// and pixels outside the picture are skipped.
void drawText(RgbImage& image, int x, int y, const std::string& text, int scale,
              uint8_t grey);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_BITMAP_FONT_H_
