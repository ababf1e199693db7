#include "bench/frame_cases.h"

namespace bench {

std::string frameName(Cache cache, const char* implementation, int colours,
                      bool preview) {
  return "frame/" + std::to_string(kFrameWidth) + "x" +
         std::to_string(kFrameHeight) + "_k" + std::to_string(colours) +
         (preview ? "_preview" : "") + "_" + cacheName(cache) + "/" +
         implementation;
}

}  // namespace bench
