// What the tool learned about one picture or video frame: the plug-in's
// palette rows and what its frame information told about them.
#ifndef PAVONA_TOOLS_PAVONA_FRAME_REPORT_H_
#define PAVONA_TOOLS_PAVONA_FRAME_REPORT_H_

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "api/pavona_host.h"

namespace pavona::tool {

struct PaletteColour {
  // The row as the plug-in wrote it, in the frame's sample scale.
  float r = 0;
  float g = 0;
  float b = 0;
  float lightness = 0;
  // Working-frame points in the row's cluster; -1 when not observed.
  int members = -1;
};

struct FrameReport {
  std::string file;
  std::string error;    // non-empty: the input failed, nothing else is set
  int sourceWidth = 0;  // the picture or raw frame as read
  int sourceHeight = 0;
  IMAGE_FORMAT_TYPE format = IMAGE_FORMAT_NV21;
  int frameWidth = 0;  // the frame handed to the plug-in
  int frameHeight = 0;
  int frameStride = 0;
  int workingWidth = 0;
  int workingHeight = 0;
  int colorsRequested = 0;
  int passes = -1;  // k-means passes; -1 when not observed
  std::optional<unsigned> seed;
  std::string preview;                 // file written, if any
  std::vector<PaletteColour> colours;  // only rows the plug-in wrote

  // Video frames only: `seconds` is set for them alone.
  std::optional<double> seconds;  // presentation time
  long frameIndex = 0;            // in decoding order, from 0
  double pluginMs = 0;            // time inside singleProcessImage
  std::optional<double> flicker;  // ΔE00 from the previous analysed frame
  double smooth = 0;  // the --smooth weight the colours went through
};

// The row as 8-bit R, G, B: rounded and clamped; 10-bit rows scaled by
// 255/1023.
std::array<uint8_t, 3> colourBytes(const PaletteColour& colour,
                                   IMAGE_FORMAT_TYPE format);

// "#RRGGBB" of colourBytes.
std::string hexColour(const PaletteColour& colour, IMAGE_FORMAT_TYPE format);

// The colour's cluster as a percentage of the working frame's points, or
// a negative value when not observed.
double sharePercent(const PaletteColour& colour, const FrameReport& report);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_FRAME_REPORT_H_
