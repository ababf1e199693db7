// Decodes PNG and JPEG pictures held in memory into 8-bit RGB.
#ifndef PAVONA_TOOLS_PAVONA_IMAGE_DECODE_H_
#define PAVONA_TOOLS_PAVONA_IMAGE_DECODE_H_

#include <cstddef>
#include <cstdint>

#include "tools/pavona/rgb_image.h"

namespace pavona::tool {

// Pictures above this many pixels are refused rather than decoded: far
// beyond any camera frame, and a corrupt header must not allocate gigabytes.
inline constexpr int64_t kMaxPicturePixels = int64_t{1} << 26;

// Whether the data starts with a PNG or JPEG signature.
bool isPicture(const uint8_t* data, size_t size);
// Picks the decoder from the data's signature. Throws ToolError for
// anything that is not a complete, valid PNG or JPEG.
RgbImage decodeImage(const uint8_t* data, size_t size);
// Any PNG colour type and depth; transparent pixels are laid on white.
RgbImage decodePng(const uint8_t* data, size_t size);
// Greyscale or colour JPEG. Data that libjpeg only warns about (a truncated
// or damaged stream) is refused too.
RgbImage decodeJpeg(const uint8_t* data, size_t size);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_IMAGE_DECODE_H_
