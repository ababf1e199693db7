// Turns one input file into the frame the plug-in is handed.
#ifndef PAVONA_TOOLS_PAVONA_FRAME_SOURCE_H_
#define PAVONA_TOOLS_PAVONA_FRAME_SOURCE_H_

#include <string>

#include "tools/pavona/options.h"
#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {

struct LoadedFrame {
  YuvFrame frame;
  int sourceWidth = 0;  // the picture's size before cropping to even
  int sourceHeight = 0;
  std::string note;  // a remark worth a warning, such as surplus raw bytes
};

// A raw frame when the options say --raw, else a decoded and converted
// picture. Throws ToolError naming what is wrong with the file.
LoadedFrame loadFrame(const Options& options, const std::string& path);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_FRAME_SOURCE_H_
