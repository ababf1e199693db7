#include "tools/pavona/frame_source.h"

#include <utility>

#include "tools/pavona/file_bytes.h"
#include "tools/pavona/image_decode.h"
#include "tools/pavona/raw_frame.h"
#include "tools/pavona/yuv_convert.h"

namespace pavona::tool {

LoadedFrame loadFrame(const Options& options, const std::string& path) {
  std::vector<uint8_t> bytes = readFileBytes(path);
  LoadedFrame loaded;
  if (options.raw) {
    const RawLayout layout = {*options.raw, options.rawWidth, options.rawHeight,
                              options.rawStride};
    loaded.frame = rawFrameFromBytes(std::move(bytes), layout, &loaded.note);
    loaded.sourceWidth = layout.width;
    loaded.sourceHeight = layout.height;
    return loaded;
  }
  const RgbImage picture = decodeImage(bytes.data(), bytes.size());
  loaded.frame = rgbToSemiPlanar(picture, options.format);
  loaded.sourceWidth = picture.width;
  loaded.sourceHeight = picture.height;
  return loaded;
}

}  // namespace pavona::tool
