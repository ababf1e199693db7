// What the tool's own stages throw when an input cannot be used. The text
// names the problem, not the file; the caller adds the file name.
#ifndef PAVONA_TOOLS_PAVONA_TOOL_ERROR_H_
#define PAVONA_TOOLS_PAVONA_TOOL_ERROR_H_

#include <stdexcept>

namespace pavona::tool {

class ToolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace pavona::tool

#endif  // PAVONA_TOOLS_PAVONA_TOOL_ERROR_H_
