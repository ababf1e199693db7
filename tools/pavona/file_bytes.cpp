#include "tools/pavona/file_bytes.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "tools/pavona/tool_error.h"

namespace pavona::tool {

std::vector<uint8_t> readFileBytes(const std::string& path, size_t limit) {
  std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"),
                                             std::fclose);
  if (!file) throw ToolError(std::strerror(errno));
  std::vector<uint8_t> bytes;
  uint8_t chunk[1 << 16];
  size_t got;
  while (
      bytes.size() < limit &&
      (got = std::fread(chunk, 1, std::min(sizeof chunk, limit - bytes.size()),
                        file.get())) > 0) {
    bytes.insert(bytes.end(), chunk, chunk + got);
  }
  // A directory opens fine on Linux and fails only when read.
  if (std::ferror(file.get())) throw ToolError(std::strerror(errno));
  return bytes;
}

}  // namespace pavona::tool
