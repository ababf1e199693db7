#include "tools/pavona/json_output.h"

#include <cstdio>

#include "tools/pavona/yuv_frame.h"

namespace pavona::tool {
namespace {

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const unsigned char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += static_cast<char>(c);
    } else if (c < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", c);
      out += escape;
    } else {
      out += static_cast<char>(c);
    }
  }
  return out + "\"";
}

// Nine significant digits give back the same float when parsed.
std::string number(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.9g", value);
  return text;
}

std::string size(int width, int height) {
  return "{\"width\": " + std::to_string(width) +
         ", \"height\": " + std::to_string(height) + "}";
}

std::string object(const FrameReport& report) {
  if (!report.error.empty()) {
    return "  {\"file\": " + quoted(report.file) +
           ", \"error\": " + quoted(report.error) + "}";
  }
  std::string out = "  {\n    \"file\": " + quoted(report.file) + ",\n";
  if (report.seconds) {
    out += "    \"index\": " + std::to_string(report.frameIndex) +
           ", \"timestamp\": " + number(*report.seconds) +
           ", \"pluginMs\": " + number(report.pluginMs) + ",\n";
    out += "    \"flicker\": " +
           (report.flicker ? number(*report.flicker) : "null") +
           ", \"smooth\": " + number(report.smooth) + ",\n";
  }
  out += "    \"source\": " + size(report.sourceWidth, report.sourceHeight) +
         ",\n";
  out += "    \"format\": " + quoted(formatName(report.format)) + ",\n";
  out += "    \"frame\": {\"width\": " + std::to_string(report.frameWidth) +
         ", \"height\": " + std::to_string(report.frameHeight) +
         ", \"stride\": " + std::to_string(report.frameStride) + "},\n";
  out += "    \"working\": " + size(report.workingWidth, report.workingHeight) +
         ",\n";
  out += "    \"colorsRequested\": " + std::to_string(report.colorsRequested) +
         ",\n";
  out += "    \"rows\": " + std::to_string(report.colours.size()) + ",\n";
  out += "    \"passes\": " +
         (report.passes >= 0 ? std::to_string(report.passes) : "null") + ",\n";
  out +=
      "    \"seed\": " + (report.seed ? std::to_string(*report.seed) : "null") +
      ",\n";
  out += "    \"preview\": " +
         (report.preview.empty() ? "null" : quoted(report.preview)) + ",\n";
  out += "    \"colors\": [";
  for (size_t i = 0; i < report.colours.size(); ++i) {
    const PaletteColour& colour = report.colours[i];
    const double share = sharePercent(colour, report);
    out += i == 0 ? "\n" : ",\n";
    out += "      {\"rank\": " + std::to_string(i + 1) +
           ", \"hex\": " + quoted(hexColour(colour, report.format)) +
           ", \"r\": " + number(colour.r) + ", \"g\": " + number(colour.g) +
           ", \"b\": " + number(colour.b) +
           ", \"lightness\": " + number(colour.lightness) + ", \"members\": " +
           (colour.members >= 0 ? std::to_string(colour.members) : "null") +
           ", \"share\": " + (share >= 0 ? number(share) : "null") + "}";
  }
  out += report.colours.empty() ? "]\n  }" : "\n    ]\n  }";
  return out;
}

}  // namespace

std::string formatJson(const std::vector<FrameReport>& reports) {
  std::string out = "[";
  for (size_t i = 0; i < reports.size(); ++i) {
    out += i == 0 ? "\n" : ",\n";
    out += object(reports[i]);
  }
  return out + (reports.empty() ? "]\n" : "\n]\n");
}

}  // namespace pavona::tool
