// Natively, before the counts: turns the bundled photographs into the raw
// NV21 frames the counted guest reads, as the pavona tool converts them,
// since the guest has no JPEG decoder of its own:
//   pavona_sample_frames DIR PICTURE...
// writes DIR/<name>.nv21 (packed rows) and prints "<name> <W>x<H>" a line.
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>

#include "tools/pavona/file_bytes.h"
#include "tools/pavona/image_decode.h"
#include "tools/pavona/tool_error.h"
#include "tools/pavona/yuv_convert.h"

namespace {

std::string baseName(const std::string& path) {
  const size_t slash = path.find_last_of('/');
  const std::string file =
      slash == std::string::npos ? path : path.substr(slash + 1);
  return file.substr(0, file.find_last_of('.'));
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s DIR PICTURE...\n", argv[0]);
    return 2;
  }
  using namespace pavona::tool;
  for (int i = 2; i < argc; ++i) {
    try {
      const auto bytes = readFileBytes(argv[i]);
      const YuvFrame frame = rgbToSemiPlanar(
          decodeImage(bytes.data(), bytes.size()), IMAGE_FORMAT_NV21);
      const std::string name = baseName(argv[i]);
      std::ofstream out(std::string(argv[1]) + "/" + name + ".nv21",
                        std::ios::binary);
      out.write(reinterpret_cast<const char*>(frame.bytes.data()),
                static_cast<std::streamsize>(frame.bytes.size()));
      if (!out.flush()) throw ToolError("cannot write its frame");
      std::printf("%s %dx%d\n", name.c_str(), frame.width, frame.height);
    } catch (const std::exception& e) {
      std::fprintf(stderr, "%s: %s\n", argv[i], e.what());
      return 1;
    }
  }
  return 0;
}
