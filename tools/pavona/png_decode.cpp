#include <png.h>

#include <cstring>
#include <string>

#include "tools/pavona/image_decode.h"
#include "tools/pavona/tool_error.h"

namespace pavona::tool {

RgbImage decodePng(const uint8_t* data, size_t size) {
  png_image png;
  std::memset(&png, 0, sizeof png);
  png.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&png, data, size)) {
    throw ToolError(std::string("bad PNG: ") + png.message);
  }
  if (int64_t{png.width} * png.height > kMaxPicturePixels) {
    png_image_free(&png);
    throw ToolError("PNG too large (" + std::to_string(png.width) + "x" +
                    std::to_string(png.height) + ")");
  }
  png.format = PNG_FORMAT_RGB;
  RgbImage image;
  image.width = static_cast<int>(png.width);
  image.height = static_cast<int>(png.height);
  image.pixels.resize(PNG_IMAGE_SIZE(png));
  const png_color white = {255, 255, 255};
  if (!png_image_finish_read(&png, &white, image.pixels.data(), 0, nullptr)) {
    throw ToolError(std::string("bad PNG: ") + png.message);
  }
  return image;
}

}  // namespace pavona::tool
