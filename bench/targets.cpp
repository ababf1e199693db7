#include "bench/targets.h"

#include "bench/colorconv_cases.h"
#include "bench/frame_cases.h"
#include "bench/kmeans_cases.h"
#include "bench/resize_cases.h"

namespace bench {

namespace {

std::string sizeOf(ResizeCase to) {
  return std::to_string(to.width) + "x" + std::to_string(to.height);
}

void resizeTargets(std::vector<Target>& list) {
  for (ResizeCase to : kResizeCases) {
    const bool general = to.width == 124;
    for (Cache cache : {Cache::kWarm, Cache::kCold}) {
      const std::string what =
          "resize to " + sizeOf(to) + ", " + cacheName(cache);
      const std::string ours = resizeName(to, cache, "pavona");
      // The general path is held to libyuv warm and to memory cold; the
      // exact factors to libyuv and to memory both ways.
      const bool toLibyuv = !general || cache == Cache::kWarm;
      const bool toMemory = !general || cache == Cache::kCold;
      list.push_back({what + " vs libyuv", ours,
                      resizeName(to, cache, "libyuv"), Metric::kTime,
                      toLibyuv ? 1.0 : 0.0});
      list.push_back({what + " vs opencv", ours,
                      resizeName(to, cache, "opencv"), Metric::kTime, 0.0});
      list.push_back({what + " vs memcpy of its rows", ours,
                      touchedCopyName(to, cache), Metric::kTime,
                      toMemory ? (general ? 1.2 : 1.5) : 0.0});
    }
  }
}

void convertTargets(std::vector<Target>& list) {
  for (ConvertSize size : kConvertSizes) {
    const std::string what = "YUV to float RGB " + std::to_string(size.width) +
                             "x" + std::to_string(size.height);
    const std::string ours = convertName(size, "nv21", "pavona");
    list.push_back({what + " vs libyuv", ours,
                    convertName(size, "nv21", "libyuv"), Metric::kTime,
                    size.width == 124 ? 1.0 : 0.8});
    list.push_back({what + " vs libyuv, plain float loop", ours,
                    convertName(size, "nv21_floatloop", "libyuv"),
                    Metric::kTime, 0.0});
    list.push_back({what + " vs opencv", ours,
                    convertName(size, "nv21", "opencv"), Metric::kTime, 0.0});
  }
}

void kmeansTargets(std::vector<Target>& list) {
  for (int k : kKMeansCounts) {
    list.push_back({"k-means k=" + std::to_string(k) + ", time a pass",
                    kmeansName(k, "pavona"), kmeansName(k, "opencv"),
                    Metric::kTimePerPass, 0.2});
  }
  for (int k : kKMeansCounts) {
    list.push_back({"k-means k=" + std::to_string(k) + ", shortest run a pass",
                    kmeansPassName(k, "pavona"), kmeansPassName(k, "opencv"),
                    Metric::kTimePerPass, 0.0});
  }
}

void frameTargets(std::vector<Target>& list) {
  for (Cache cache : {Cache::kWarm, Cache::kCold}) {
    list.push_back({std::string("whole frame k=3, ") + cacheName(cache) +
                        " vs the opencv pipeline",
                    frameName(cache, "pavona"), frameName(cache, "opencv"),
                    Metric::kTime, 0.3});
  }
}

}  // namespace

std::vector<Target> targets() {
  std::vector<Target> list;
  resizeTargets(list);
  convertTargets(list);
  kmeansTargets(list);
  frameTargets(list);
  return list;
}

}  // namespace bench
