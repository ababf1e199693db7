#include "tests/tool_subprocess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace pavona::testing {
namespace {

std::string slurp(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

ToolRun runTool(const std::vector<std::string>& args,
                const std::vector<std::string>& environment) {
  char outPath[] = "/tmp/pavona_tool_out_XXXXXX";
  char errPath[] = "/tmp/pavona_tool_err_XXXXXX";
  const int outFd = mkstemp(outPath);
  const int errFd = mkstemp(errPath);
  if (outFd < 0 || errFd < 0) throw std::runtime_error("mkstemp failed");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(outFd, STDOUT_FILENO);
    dup2(errFd, STDERR_FILENO);
    close(STDIN_FILENO);
    // Under AddressSanitizer: full stacks, so that the one leak GLib makes
    // on purpose can be told apart by where it comes from.
    const char* asan = std::getenv("ASAN_OPTIONS");
    const std::string asanOptions = std::string("ASAN_OPTIONS=") +
                                    (asan != nullptr ? asan : "") +
                                    ":fast_unwind_on_malloc=0";
    const std::string lsanOptions =
        "LSAN_OPTIONS=print_suppressions=0:"
        "suppressions=" PAVONA_TOOL_LSAN_SUPPRESSIONS;
    putenv(const_cast<char*>(asanOptions.c_str()));
    putenv(const_cast<char*>(lsanOptions.c_str()));
    for (const std::string& entry : environment) {
      putenv(const_cast<char*>(entry.c_str()));
    }
    std::vector<char*> argv = {const_cast<char*>(PAVONA_TOOL_PATH)};
    for (const std::string& arg : args) {
      argv.push_back(const_cast<char*>(arg.c_str()));
    }
    argv.push_back(nullptr);
    execv(PAVONA_TOOL_PATH, argv.data());
    _exit(127);
  }
  int wstatus = 0;
  waitpid(child, &wstatus, 0);
  close(outFd);
  close(errFd);
  ToolRun run;
  run.status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1;
  run.out = slurp(outPath);
  run.err = slurp(errPath);
  std::remove(outPath);
  std::remove(errPath);
  return run;
}

}  // namespace pavona::testing
