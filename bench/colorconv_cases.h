// The YUV to float RGB cases: the engine's working size (124 x 92, a
// 4000 x 3000 frame at 1/32) and a whole 4000 x 3000 frame; their inputs
// and outputs, shared by ours and the peers.
#ifndef PAVONA_BENCH_COLORCONV_CASES_H_
#define PAVONA_BENCH_COLORCONV_CASES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct ConvertSize {
  int width;
  int height;
};

constexpr ConvertSize kConvertSizes[] = {{124, 92}, {4000, 3000}};

// "yuv2rgb/<w>x<h>_<format>/<implementation>"
std::string convertName(ConvertSize size, const char* format,
                        const char* implementation);

// A semi-planar frame of random samples below 2^bits, packed rows; made
// once for each sample type, size and depth.
template <typename T>
struct SemiPlanar {
  std::vector<T> luma;
  std::vector<T> chroma;
};
template <typename T>
const SemiPlanar<T>& randomFrame(ConvertSize size, int bits);

// One output of `floats` floats shared by every conversion, written once
// before any timing.
float* rgbOutput(std::size_t floats);

}  // namespace bench

#endif  // PAVONA_BENCH_COLORCONV_CASES_H_
