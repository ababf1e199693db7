// Writes the frames of the demo clip as PNG files: a slow pan across one
// photograph, then a cut to another, panned more slowly still. `make demo`
// encodes them with GStreamer and runs the tool on the clip.
//
//   pavona_demo_frames OUT_DIR FIRST.jpg SECOND.jpg
//
// gives OUT_DIR/frame-000.png, ... of kWidth x kHeight.
#include <cstdio>
#include <cstring>
#include <string>

#include "tools/pavona/file_bytes.h"
#include "tools/pavona/image_decode.h"
#include "tools/pavona/png_write.h"
#include "tools/pavona/tool_error.h"

namespace {

using pavona::tool::RgbImage;

constexpr int kWidth = 320;
constexpr int kHeight = 240;
// 24 frames a second: about three seconds of pan, then two.
constexpr int kPanFrames = 72;
constexpr int kAfterCutFrames = 48;

RgbImage load(const std::string& path) {
  const std::vector<uint8_t> bytes = pavona::tool::readFileBytes(path);
  const RgbImage picture =
      pavona::tool::decodeImage(bytes.data(), bytes.size());
  if (picture.width < kWidth || picture.height < kHeight) {
    throw pavona::tool::ToolError("smaller than a frame");
  }
  return picture;
}

// The window at `left` across the picture, vertically centred.
RgbImage window(const RgbImage& picture, int left) {
  RgbImage frame;
  frame.width = kWidth;
  frame.height = kHeight;
  frame.pixels.resize(size_t{3} * kWidth * kHeight);
  const int top = (picture.height - kHeight) / 2;
  for (int y = 0; y < kHeight; ++y) {
    std::memcpy(&frame.pixels[size_t{3} * kWidth * y],
                &picture.pixels[3 * (size_t(top + y) * picture.width + left)],
                size_t{3} * kWidth);
  }
  return frame;
}

// Pans from the left edge across `travel` of the picture's spare width.
void pan(const RgbImage& picture, int frames, double travel,
         const std::string& directory, int* index) {
  const int spare = picture.width - kWidth;
  for (int i = 0; i < frames; ++i) {
    const int left = static_cast<int>(spare * travel * i / (frames - 1));
    char name[32];
    std::snprintf(name, sizeof name, "/frame-%03d.png", (*index)++);
    pavona::tool::writePng(directory + name, window(picture, left));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fputs("usage: pavona_demo_frames OUT_DIR FIRST.jpg SECOND.jpg\n",
               stderr);
    return 2;
  }
  try {
    int index = 0;
    pan(load(argv[2]), kPanFrames, 1.0, argv[1], &index);
    pan(load(argv[3]), kAfterCutFrames, 0.5, argv[1], &index);
  } catch (const pavona::tool::ToolError& error) {
    std::fprintf(stderr, "pavona_demo_frames: %s\n", error.what());
    return 1;
  }
  return 0;
}
