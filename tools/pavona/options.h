// The pavona tool's command line.
#ifndef PAVONA_TOOLS_PAVONA_OPTIONS_H_
#define PAVONA_TOOLS_PAVONA_OPTIONS_H_

#include <optional>
#include <string>
#include <vector>

#include "api/pavona_host.h"

namespace pavona::tool {

struct Options {
  std::vector<std::string> inputs;
  bool help = false;
  bool version = false;
  // Set with --raw: the inputs are camera frames of this layout.
  std::optional<IMAGE_FORMAT_TYPE> raw;
  int rawWidth = 0;
  int rawHeight = 0;
  int rawStride = 0;  // 0: packed rows
  // The frame format pictures are converted to; videos too when given.
  IMAGE_FORMAT_TYPE format = IMAGE_FORMAT_NV21;
  bool formatGiven = false;
  int initWidth = 4000;
  int initHeight = 3000;
  // Handed to the plug-in as given; it clamps.
  int colors = 4;
  std::string preview;
  bool json = false;
  bool noColor = false;
  bool verbose = false;
  std::optional<unsigned> seed;
  // Video only: analyse every `every`-th frame, at most `maxFrames` of
  // them (0: all), draw a timeline, smooth the palette with this weight
  // (0: off).
  int every = 1;
  long maxFrames = 0;
  std::string timeline;
  double smooth = 0;

  // The format the engine is set up for and every frame carries.
  IMAGE_FORMAT_TYPE frameFormat() const { return raw ? *raw : format; }
};

struct ParsedOptions {
  Options options;
  std::string error;  // non-empty: a usage error, exit status 2
};

// Parses the arguments after the program name.
ParsedOptions parseOptions(const std::vector<std::string>& args);

// The --help text.
std::string usageText();

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_OPTIONS_H_
