#include "tools/pavona/image_decode.h"

#include <cstring>

#include "tools/pavona/tool_error.h"

namespace pavona::tool {

namespace {

const uint8_t kPngSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
const uint8_t kJpegSignature[] = {0xFF, 0xD8, 0xFF};

bool isPng(const uint8_t* data, size_t size) {
  return size >= sizeof kPngSignature &&
         std::memcmp(data, kPngSignature, sizeof kPngSignature) == 0;
}

bool isJpeg(const uint8_t* data, size_t size) {
  return size >= sizeof kJpegSignature &&
         std::memcmp(data, kJpegSignature, sizeof kJpegSignature) == 0;
}

}  // namespace

bool isPicture(const uint8_t* data, size_t size) {
  return isPng(data, size) || isJpeg(data, size);
}

RgbImage decodeImage(const uint8_t* data, size_t size) {
  if (isPng(data, size)) return decodePng(data, size);
  if (isJpeg(data, size)) return decodeJpeg(data, size);
  if (size == 0) throw ToolError("empty file");
  throw ToolError("not a PNG or JPEG file (use --raw for camera frames)");
}

}  // namespace pavona::tool
