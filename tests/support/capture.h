// Captures what a call writes to stdout and stderr, at the file-descriptor
// level so that printf, std::cout and liblog's direct writes are all seen.
#ifndef PAVONA_TESTS_SUPPORT_CAPTURE_H_
#define PAVONA_TESTS_SUPPORT_CAPTURE_H_

#include <functional>
#include <string>

namespace pavona::testing {

struct CapturedOutput {
  std::string out;
  std::string err;
};

// Runs `body` with fds 1 and 2 redirected to temporary files; both streams
// are flushed before and after, so nothing leaks across the boundary.
CapturedOutput captureOutput(const std::function<void()>& body);

}  // namespace pavona::testing

#endif  // PAVONA_TESTS_SUPPORT_CAPTURE_H_
