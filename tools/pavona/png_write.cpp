#include "tools/pavona/png_write.h"

#include <png.h>

#include <cstring>

#include "tools/pavona/tool_error.h"

namespace pavona::tool {

void writePng(const std::string& path, const RgbImage& image) {
  png_image png;
  std::memset(&png, 0, sizeof png);
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image.width);
  png.height = static_cast<png_uint_32>(image.height);
  png.format = PNG_FORMAT_RGB;
  if (!png_image_write_to_file(&png, path.c_str(), 0, image.pixels.data(), 0,
                               nullptr)) {
    throw ToolError(std::string("cannot write PNG: ") + png.message);
  }
}

}  // namespace pavona::tool
