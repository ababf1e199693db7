// The AArch64 guest of `make bench-aarch64`: runs one counted case, named
// by implementation and case, for k colours, or a bundled photograph's
// raw frame:
//   pavona_count_guest pavona|libyuv|opencv CASE [K]
//   pavona_count_guest sample K FRAME WxH
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "bench/aarch64/counted_cases.h"

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: %s pavona|libyuv|opencv CASE [K]\n", argv[0]);
    return 2;
  }
  if (std::strcmp(argv[1], "sample") == 0) {
    int width = 0;
    int height = 0;
    if (argc < 5 || std::sscanf(argv[4], "%dx%d", &width, &height) != 2 ||
        width < 2 || height < 2) {
      std::fprintf(stderr, "usage: %s sample K FRAME WxH\n", argv[0]);
      return 2;
    }
    bench::countSample(argv[3], width, height, std::atoi(argv[2]));
    return 0;
  }
  const int k = argc > 3 ? std::atoi(argv[3]) : 3;
  if (std::strcmp(argv[1], "pavona") == 0) {
    bench::countPavona(argv[2], k);
  } else if (std::strcmp(argv[1], "libyuv") == 0) {
    bench::countLibyuv(argv[2], k);
  } else if (std::strcmp(argv[1], "opencv") == 0) {
    bench::countOpenCV(argv[2], k);
  } else {
    std::fprintf(stderr, "unknown implementation %s\n", argv[1]);
    return 2;
  }
  return 0;
}
