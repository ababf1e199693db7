// Runs the built pavona binary as a user would, collecting what it prints.
#ifndef PAVONA_TESTS_TOOL_SUBPROCESS_H_
#define PAVONA_TESTS_TOOL_SUBPROCESS_H_

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace pavona::testing {

struct ToolRun {
  int status = -1;  // exit status, or -1 if the tool did not exit normally
  std::string out;
  std::string err;
};

// Runs PAVONA_TOOL_PATH with `args`, stdout and stderr each captured to a
// file, so neither is a terminal.
ToolRun runTool(const std::vector<std::string>& args);

// The tool's --json output for `args`; a failed run is a test failure.
nlohmann::json runToolJson(std::vector<std::string> args);

}  // namespace pavona::testing

#endif  // PAVONA_TESTS_TOOL_SUBPROCESS_H_
