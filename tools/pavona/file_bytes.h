// Reads a file, or its start, into memory.
#ifndef PAVONA_TOOLS_PAVONA_FILE_BYTES_H_
#define PAVONA_TOOLS_PAVONA_FILE_BYTES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace pavona::tool {

// The file's bytes, at most `limit` of them; throws ToolError with the
// system's reason on failure.
std::vector<uint8_t> readFileBytes(const std::string& path,
                                   size_t limit = SIZE_MAX);

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_FILE_BYTES_H_
