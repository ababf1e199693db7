#include "bench/console_silencer.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace bench {

ConsoleSilencer::ConsoleSilencer()
    : savedOut_(dup(STDOUT_FILENO)), savedErr_(dup(STDERR_FILENO)) {
  // Buffered text belongs to before: out it goes first.
  std::fflush(stdout);
  std::fflush(stderr);
  const int null = open("/dev/null", O_WRONLY);
  dup2(null, STDOUT_FILENO);
  dup2(null, STDERR_FILENO);
  close(null);
}

ConsoleSilencer::~ConsoleSilencer() {
  // What the library left buffered goes to /dev/null, not to the report.
  std::fflush(stdout);
  std::fflush(stderr);
  dup2(savedOut_, STDOUT_FILENO);
  dup2(savedErr_, STDERR_FILENO);
  close(savedOut_);
  close(savedErr_);
}

}  // namespace bench
