// Where the preview of each input goes.
#ifndef PAVONA_TOOLS_PAVONA_PREVIEW_PATH_H_
#define PAVONA_TOOLS_PAVONA_PREVIEW_PATH_H_

#include <cstddef>
#include <string>

namespace pavona::tool {

// `option` is the --preview argument. A directory (existing, or written
// with a trailing '/') receives <input file name without extension>.png.
// Otherwise one input writes `option` itself, and input `index` (from 0) of
// several writes `option` with -<index + 1> before a ".png" ending.
std::string previewPath(const std::string& option, const std::string& input,
                        size_t index, size_t count);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_PREVIEW_PATH_H_
