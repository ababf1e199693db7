// Saves an 8-bit RGB picture as a PNG file.
#ifndef PAVONA_TOOLS_PAVONA_PNG_WRITE_H_
#define PAVONA_TOOLS_PAVONA_PNG_WRITE_H_

#include <string>

#include "tools/pavona/rgb_image.h"

namespace pavona::tool {

// Throws ToolError with libpng's reason when the file cannot be written.
void writePng(const std::string& path, const RgbImage& image);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_PNG_WRITE_H_
