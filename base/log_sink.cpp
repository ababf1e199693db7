#include "base/log_sink.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace pavona {

const char* sourceBaseName(const char* path) {
  const char* slash = std::strrchr(path, '/');
  return slash != nullptr ? slash + 1 : path;
}

void printLogLine(int level, int status, const char* format, va_list args) {
  char text[kLogBufferSize];
  const int length = std::vsnprintf(text, sizeof text, format, args);
  if (length < 0 || length >= kLogBufferSize) {
    // The same end as a fortified formatter's.
    std::fputs("*** buffer overflow detected ***: terminated\n", stderr);
    std::abort();
  }
  std::printf("set log status %d %d logText %s \n", level, status, text);
}

void logPrintIgnoringSwitch(int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  printLogLine(level, 1, format, args);
  va_end(args);
}

}  // namespace pavona
