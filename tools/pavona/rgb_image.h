// A decoded picture: 8-bit RGB, rows packed (3 x width bytes a row).
#ifndef PAVONA_TOOLS_PAVONA_RGB_IMAGE_H_
#define PAVONA_TOOLS_PAVONA_RGB_IMAGE_H_

#include <cstdint>
#include <vector>

namespace pavona::tool {

struct RgbImage {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> pixels;
};

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_RGB_IMAGE_H_
