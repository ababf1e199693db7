#include <csetjmp>
#include <cstdio>
// jpeglib.h needs FILE and size_t declared first.
#include <jpeglib.h>

#include <memory>
#include <string>

#include "tools/pavona/image_decode.h"
#include "tools/pavona/tool_error.h"

namespace pavona::tool {
namespace {

// libjpeg reports fatal errors through error_exit, which must not return:
// jump back to decodeJpeg and turn the message into an exception there.
struct JpegErrors {
  jpeg_error_mgr manager;
  std::jmp_buf jump;
  char message[JMSG_LENGTH_MAX];
};

void onFatal(j_common_ptr cinfo) {
  auto* errors = reinterpret_cast<JpegErrors*>(cinfo->err);
  (*cinfo->err->format_message)(cinfo, errors->message);
  std::longjmp(errors->jump, 1);
}

// Keeps warnings off stderr; the last one explains a refusal.
void onMessage(j_common_ptr cinfo) {
  auto* errors = reinterpret_cast<JpegErrors*>(cinfo->err);
  (*cinfo->err->format_message)(cinfo, errors->message);
}

}  // namespace

RgbImage decodeJpeg(const uint8_t* data, size_t size) {
  // Everything that outlives a longjmp is set up before setjmp and only
  // reached through pointers that do not change afterwards.
  auto image = std::make_unique<RgbImage>();
  auto errors = std::make_unique<JpegErrors>();
  auto cinfo = std::make_unique<jpeg_decompress_struct>();
  cinfo->err = jpeg_std_error(&errors->manager);
  errors->manager.error_exit = onFatal;
  errors->manager.output_message = onMessage;
  errors->message[0] = '\0';
  if (setjmp(errors->jump)) {
    jpeg_destroy_decompress(cinfo.get());
    throw ToolError(std::string("bad JPEG: ") + errors->message);
  }
  jpeg_create_decompress(cinfo.get());
  jpeg_mem_src(cinfo.get(), data, static_cast<unsigned long>(size));
  jpeg_read_header(cinfo.get(), TRUE);
  if (int64_t{cinfo->image_width} * cinfo->image_height > kMaxPicturePixels) {
    std::snprintf(errors->message, sizeof errors->message, "too large (%ux%u)",
                  cinfo->image_width, cinfo->image_height);
    std::longjmp(errors->jump, 1);
  }
  cinfo->out_color_space = JCS_RGB;
  jpeg_start_decompress(cinfo.get());
  image->width = static_cast<int>(cinfo->output_width);
  image->height = static_cast<int>(cinfo->output_height);
  const size_t rowBytes = size_t{cinfo->output_width} * 3;
  image->pixels.resize(rowBytes * cinfo->output_height);
  while (cinfo->output_scanline < cinfo->output_height) {
    JSAMPROW row = image->pixels.data() + rowBytes * cinfo->output_scanline;
    jpeg_read_scanlines(cinfo.get(), &row, 1);
  }
  jpeg_finish_decompress(cinfo.get());
  if (errors->manager.num_warnings > 0) {
    std::longjmp(errors->jump, 1);
  }
  jpeg_destroy_decompress(cinfo.get());
  return std::move(*image);
}

}  // namespace pavona::tool
