#include "bench/colorconv_cases.h"

#include <map>
#include <memory>
#include <random>
#include <tuple>

namespace bench {

std::string convertName(ConvertSize size, const char* format,
                        const char* implementation) {
  return "yuv2rgb/" + std::to_string(size.width) + "x" +
         std::to_string(size.height) + "_" + format + "/" + implementation;
}

template <typename T>
const SemiPlanar<T>& randomFrame(ConvertSize size, int bits) {
  static std::map<std::tuple<int, int, int>, SemiPlanar<T>> frames;
  const auto key = std::make_tuple(size.width, size.height, bits);
  auto found = frames.find(key);
  if (found != frames.end()) return found->second;
  std::mt19937 rng(1);
  SemiPlanar<T> frame;
  frame.luma.resize(static_cast<std::size_t>(size.width) * size.height);
  frame.chroma.resize(frame.luma.size() / 2);
  for (T& s : frame.luma) s = static_cast<T>(rng() & ((1u << bits) - 1));
  for (T& s : frame.chroma) s = static_cast<T>(rng() & ((1u << bits) - 1));
  return frames.emplace(key, std::move(frame)).first->second;
}

template const SemiPlanar<uint8_t>& randomFrame(ConvertSize, int);
template const SemiPlanar<uint16_t>& randomFrame(ConvertSize, int);

float* rgbOutput(std::size_t floats) {
  static std::unique_ptr<float[]> output;
  static std::size_t size = 0;
  if (floats > size) {
    output.reset(new float[floats]());
    size = floats;
  }
  return output.get();
}

}  // namespace bench
