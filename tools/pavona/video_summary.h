// What a video run adds up to: frame counts, flicker and plug-in time.
#ifndef PAVONA_TOOLS_PAVONA_VIDEO_SUMMARY_H_
#define PAVONA_TOOLS_PAVONA_VIDEO_SUMMARY_H_

#include <string>
#include <vector>

#include "api/pavona_host.h"

namespace pavona::tool {

struct VideoSummary {
  std::string file;
  int width = 0;  // the frames handed to the plug-in
  int height = 0;
  IMAGE_FORMAT_TYPE format = IMAGE_FORMAT_NV21;
  int workingWidth = 0;
  int workingHeight = 0;
  int colorsRequested = 0;
  long decoded = 0;
  long analysed = 0;
  double smooth = 0;
  std::vector<double> flicker;   // one per pair of consecutive frames
  std::vector<double> pluginMs;  // one per analysed frame
  std::string timeline;          // file written, if any
};

// The nearest-rank percentile (0 < p <= 100) of `values`: the smallest
// value with at least p% of them at or below it. 0 for no values.
double percentile(std::vector<double> values, double p);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_VIDEO_SUMMARY_H_
