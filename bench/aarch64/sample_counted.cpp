// A bundled photograph's frame through the entry table, as the pavona tool
// hands it over: its own size, to a handle set up for 4000 x 3000, which
// resamples it to its working size.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "api/pavona_host.h"
#include "bench/aarch64/counted_cases.h"
#include "bench/console_silencer.h"
#include "bench/table_handle.h"

namespace bench {

namespace {

std::vector<uint8_t> readFrame(const char* path, std::size_t size) {
  std::vector<uint8_t> bytes(size + 1);
  std::FILE* file = std::fopen(path, "rb");
  const std::size_t read =
      file != nullptr ? std::fread(bytes.data(), 1, bytes.size(), file) : 0;
  if (file != nullptr) std::fclose(file);
  if (read != size) {
    std::fprintf(stderr, "%s: not a frame of %zu bytes\n", path, size);
    std::exit(1);
  }
  bytes.pop_back();
  return bytes;
}

}  // namespace

void countSample(const char* path, int width, int height, int k) {
  const std::size_t luma = std::size_t(width) * height;
  std::vector<uint8_t> frame = readFrame(path, luma + luma / 2);
  const ConsoleSilencer quiet;
  TableHandle table;
  Image image{};
  image.format = IMAGE_FORMAT_NV21;
  image.width = width;
  image.height = height;
  image.stride = width;
  image.yPlane = frame.data();
  image.uvPlane = frame.data() + luma;
  ProcessParamData param{};
  param.colorNum = k;
  countRepeats(kCountedFrames, [&] { table.process(image, param); });
}

}  // namespace bench
