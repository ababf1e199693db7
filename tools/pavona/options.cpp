#include "tools/pavona/options.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

namespace pavona::tool {
namespace {

// Sides above this would overflow the plug-in's 32-bit buffer arithmetic
// long before any camera reaches them.
constexpr long kMaxSide = 65536;
// The plug-in works at 1/32 of the init size, rounded down to even.
constexpr int kMinInitSide = 64;

class UsageError {
 public:
  explicit UsageError(std::string text) : text_(std::move(text)) {}
  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

long parseInteger(const std::string& option, const std::string& text, long low,
                  long high) {
  errno = 0;
  char* end = nullptr;
  const long value = std::strtol(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0' || errno == ERANGE || value < low ||
      value > high) {
    throw UsageError(option + " '" + text + "': expected a whole number from " +
                     std::to_string(low) + " to " + std::to_string(high));
  }
  return value;
}

double parseWeight(const std::string& option, const std::string& text) {
  errno = 0;
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || errno == ERANGE || !(value > 0) ||
      value > 1) {
    throw UsageError(option + " '" + text +
                     "': expected a weight above 0 and at most 1");
  }
  return value;
}

void parseSize(const std::string& option, const std::string& text, int* width,
               int* height) {
  const size_t x = text.find_first_of("xX");
  const std::string error = option + " '" + text + "': expected WIDTHxHEIGHT";
  if (x == std::string::npos) throw UsageError(error);
  const std::string w = text.substr(0, x), h = text.substr(x + 1);
  if (w.empty() || h.empty() || w.find_first_not_of("0123456789") != w.npos ||
      h.find_first_not_of("0123456789") != h.npos) {
    throw UsageError(error);
  }
  *width = static_cast<int>(parseInteger(option, w, 1, kMaxSide));
  *height = static_cast<int>(parseInteger(option, h, 1, kMaxSide));
}

IMAGE_FORMAT_TYPE parseFormat(const std::string& option,
                              const std::string& text) {
  if (text == "nv21") return IMAGE_FORMAT_NV21;
  if (text == "nv12") return IMAGE_FORMAT_NV12;
  if (text == "yuv10") return IMAGE_FORMAT_YUV420SP_10BIT;
  throw UsageError(option + " '" + text + "': expected nv21, nv12 or yuv10");
}

void check(const Options& options, bool sizeGiven, bool strideGiven) {
  if (options.help || options.version) return;
  if (options.raw) {
    if (!sizeGiven) throw UsageError("--raw needs --size WIDTHxHEIGHT");
    if (options.rawWidth % 2 != 0 || options.rawHeight % 2 != 0 ||
        options.rawWidth < 2 || options.rawHeight < 2) {
      throw UsageError("--size " + std::to_string(options.rawWidth) + "x" +
                       std::to_string(options.rawHeight) +
                       ": camera frames have even sides of at least 2");
    }
    const int rowBytes = options.rawWidth *
                         (*options.raw == IMAGE_FORMAT_YUV420SP_10BIT ? 2 : 1);
    if (strideGiven && options.rawStride < rowBytes) {
      throw UsageError("--stride " + std::to_string(options.rawStride) +
                       ": shorter than a row of " + std::to_string(rowBytes) +
                       " bytes");
    }
    if (options.formatGiven) {
      throw UsageError(
          "--format is for pictures; --raw names a frame's format");
    }
  } else if (sizeGiven || strideGiven) {
    throw UsageError("--size and --stride describe raw frames; add --raw");
  }
  if (options.initWidth < kMinInitSide || options.initHeight < kMinInitSide) {
    throw UsageError("--init " + std::to_string(options.initWidth) + "x" +
                     std::to_string(options.initHeight) +
                     ": the plug-in works at 1/32 of this size, so each side "
                     "needs at least " +
                     std::to_string(kMinInitSide));
  }
  if (options.inputs.empty()) throw UsageError("no input files (see --help)");
}

Options parse(const std::vector<std::string>& args) {
  Options options;
  bool sizeGiven = false, strideGiven = false;
  bool onlyFiles = false;
  for (size_t i = 0; i < args.size(); ++i) {
    std::string arg = args[i];
    if (onlyFiles || arg.size() < 2 || arg[0] != '-') {
      options.inputs.push_back(arg);
      continue;
    }
    if (arg == "--") {
      onlyFiles = true;
      continue;
    }
    std::optional<std::string> attached;
    const size_t equals = arg.find('=');
    if (arg.compare(0, 2, "--") == 0 && equals != std::string::npos) {
      attached = arg.substr(equals + 1);
      arg.resize(equals);
    }
    auto value = [&]() -> std::string {
      if (attached) return *attached;
      if (i + 1 >= args.size()) throw UsageError(arg + " needs a value");
      return args[++i];
    };
    auto flag = [&](bool* target) {
      if (attached) throw UsageError(arg + " takes no value");
      *target = true;
    };
    if (arg == "-h" || arg == "--help") {
      flag(&options.help);
    } else if (arg == "--version") {
      flag(&options.version);
    } else if (arg == "--json") {
      flag(&options.json);
    } else if (arg == "--no-color") {
      flag(&options.noColor);
    } else if (arg == "-v" || arg == "--verbose") {
      flag(&options.verbose);
    } else if (arg == "-k" || arg == "--colors") {
      options.colors =
          static_cast<int>(parseInteger(arg, value(), INT_MIN, INT_MAX));
    } else if (arg == "--seed") {
      options.seed =
          static_cast<unsigned>(parseInteger(arg, value(), 0, UINT_MAX));
    } else if (arg == "--preview") {
      options.preview = value();
      if (options.preview.empty()) throw UsageError("--preview needs a file");
    } else if (arg == "--every") {
      options.every = static_cast<int>(parseInteger(arg, value(), 1, INT_MAX));
    } else if (arg == "--max-frames") {
      options.maxFrames = parseInteger(arg, value(), 1, LONG_MAX);
    } else if (arg == "--timeline") {
      options.timeline = value();
      if (options.timeline.empty()) throw UsageError("--timeline needs a file");
    } else if (arg == "--smooth") {
      options.smooth = parseWeight(arg, value());
    } else if (arg == "--format") {
      options.format = parseFormat(arg, value());
      options.formatGiven = true;
    } else if (arg == "--raw") {
      options.raw = parseFormat(arg, value());
    } else if (arg == "--size") {
      parseSize(arg, value(), &options.rawWidth, &options.rawHeight);
      sizeGiven = true;
    } else if (arg == "--stride") {
      options.rawStride =
          static_cast<int>(parseInteger(arg, value(), 1, kMaxSide * 2));
      strideGiven = true;
    } else if (arg == "--init") {
      parseSize(arg, value(), &options.initWidth, &options.initHeight);
    } else {
      throw UsageError("unknown option '" + arg + "' (see --help)");
    }
  }
  check(options, sizeGiven, strideGiven);
  return options;
}

}  // namespace

ParsedOptions parseOptions(const std::vector<std::string>& args) {
  try {
    return {parse(args), ""};
  } catch (const UsageError& error) {
    return {Options(), error.text()};
  }
}

std::string usageText() {
  return R"(Usage: pavona [OPTIONS] FILE...

Shows the dominant colours that the Pavona camera plug-in extracts from
pictures (PNG, JPEG), raw camera frames or videos. Each picture is
converted to a semi-planar YUV frame with full-range BT.601 (the inverse of
the plug-in's own conversion) and handed to the plug-in through its
entry-point table, as a camera host would. Any other file is decoded as a
video with GStreamer, frame by frame.

Options:
  -k, --colors K     colours to ask for (default 4). Passed on as given: the
                     plug-in uses 20 for K above 20 and 3 for K below 1, and
                     may write fewer rows when colours are equally distinct.
      --preview PNG  save a preview of each picture: the frame, at most 320
                     pixels wide, above its colours, each as wide as its
                     share. With several files, PNG gets -1, -2, ... before
                     its extension; if PNG is a directory (or ends in /),
                     each preview is DIR/<file name>.png.
      --json         print one JSON array with an object per picture (per
                     analysed frame for videos).
      --seed N       call srand(N) before every frame. For K other than 4
                     and 8 the plug-in seeds k-means from rand(), so palettes
                     drift from frame to frame; a seed makes runs repeatable.
      --format F     frame format pictures and videos are converted to: nv21
                     (default; videos deeper than 8 bits: yuv10), nv12 or
                     yuv10 (10-bit samples in 16-bit words).
      --init WxH     frame size the plug-in is set up for (default 4000x3000).
                     Every frame is resampled to 1/32 of it, as on a phone.
      --raw F        the files are raw frames in format F (nv21, nv12, yuv10:
                     16-bit little-endian words 0..1023, chroma U then V).
      --size WxH     size of the raw frames (even sides).
      --stride N     bytes per row of the raw frames (default: packed).
      --no-color     no colour swatches (also off when NO_COLOR is set or
                     the output is not a terminal).
  -v, --verbose      let the plug-in's log lines through, on stderr.
  -h, --help         show this help.
      --version      show the tool's and the plug-in's versions.

Videos:
      --every N      analyse every N-th frame (default 1).
      --max-frames N stop after N analysed frames.
      --timeline PNG draw the palettes over time: a column per analysed
                     frame, colours stacked by share, thumbnails above.
                     Numbered or named as --preview is for several files.
      --smooth A     follow each colour from frame to frame and move it by
                     weight A (0 < A <= 1) towards the colour it matches:
                     steadier palettes in a stable order. The plug-in's
                     own output is unchanged.
  Each video ends with its flicker: the share-weighted mean CIEDE2000
  between the colours of consecutive analysed frames, matched one to one
  at the least total difference; and the time spent in the plug-in.
  --json gives one object per analysed frame instead.

Per colour: rank, #RRGGBB (10-bit values scaled to 8 bits), the palette
row as written (R, G, B, lightness) and the cluster's share of the frame.

Exit status: 0 when every file was processed, 1 when a file could not be
read or processed (the others still are), 2 for a usage error.
)";
}

}  // namespace pavona::tool
