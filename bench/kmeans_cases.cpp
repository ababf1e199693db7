#include "bench/kmeans_cases.h"

#include "bench/photo_points.h"

namespace bench {

namespace {

std::string name(const char* operation, int k, const char* implementation) {
  return std::string(operation) + "/" + std::to_string(kPointsWidth) + "x" +
         std::to_string(kPointsHeight) + "_k" + std::to_string(k) + "/" +
         implementation;
}

}  // namespace

std::string kmeansName(int k, const char* implementation) {
  return name("kmeans", k, implementation);
}

std::string kmeansPassName(int k, const char* implementation) {
  return name("kmeans_pass", k, implementation);
}

}  // namespace bench
