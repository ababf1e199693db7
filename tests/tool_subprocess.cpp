#include "tests/tool_subprocess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace pavona::testing {

ToolRun runTool(const std::vector<std::string>& args) {
  char paths[2][32] = {"/tmp/pavona_tool_out_XXXXXX",
                       "/tmp/pavona_tool_err_XXXXXX"};
  const int fds[2] = {mkstemp(paths[0]), mkstemp(paths[1])};
  if (fds[0] < 0 || fds[1] < 0) throw std::runtime_error("mkstemp failed");
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(fds[0], STDOUT_FILENO);
    dup2(fds[1], STDERR_FILENO);
    close(STDIN_FILENO);
    // Under AddressSanitizer: full stacks, so that the one leak GLib makes
    // on purpose can be told apart by where it comes from.
    const char* asan = std::getenv("ASAN_OPTIONS");
    const std::string asanOptions = std::string("ASAN_OPTIONS=") +
                                    (asan != nullptr ? asan : "") +
                                    ":fast_unwind_on_malloc=0";
    putenv(const_cast<char*>(asanOptions.c_str()));
    putenv(
        const_cast<char*>("LSAN_OPTIONS=print_suppressions=0:"
                          "suppressions=" PAVONA_TOOL_LSAN_SUPPRESSIONS));
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
  ToolRun run;
  run.status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1;
  std::string* texts[2] = {&run.out, &run.err};
  for (int i = 0; i < 2; ++i) {
    close(fds[i]);
    std::ifstream in(paths[i], std::ios::binary);
    texts[i]->assign(std::istreambuf_iterator<char>(in), {});
    std::remove(paths[i]);
  }
  return run;
}

nlohmann::json runToolJson(std::vector<std::string> args) {
  args.insert(args.begin(), "--json");
  const ToolRun run = runTool(args);
  EXPECT_EQ(run.status, 0) << run.err;
  return nlohmann::json::parse(run.out);
}

}  // namespace pavona::testing
