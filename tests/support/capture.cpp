#include "tests/support/capture.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace pavona::testing {
namespace {

class Redirect {
 public:
  explicit Redirect(int fd) : fd_(fd), file_(std::tmpfile()) {
    if (file_ == nullptr) throw std::runtime_error("tmpfile failed");
    saved_ = dup(fd_);
    if (saved_ < 0 || dup2(fileno(file_), fd_) < 0) {
      throw std::runtime_error("dup failed");
    }
  }
  Redirect(const Redirect&) = delete;
  Redirect& operator=(const Redirect&) = delete;
  ~Redirect() {
    if (saved_ >= 0) close(saved_);
    if (file_ != nullptr) std::fclose(file_);
  }

  std::string finish() {
    dup2(saved_, fd_);
    close(saved_);
    saved_ = -1;
    std::string text;
    std::rewind(file_);
    char chunk[4096];
    size_t n;
    while ((n = std::fread(chunk, 1, sizeof chunk, file_)) > 0) {
      text.append(chunk, n);
    }
    return text;
  }

 private:
  int fd_;
  std::FILE* file_;
  int saved_ = -1;
};

}  // namespace

CapturedOutput captureOutput(const std::function<void()>& body) {
  std::fflush(stdout);
  std::fflush(stderr);
  Redirect out(STDOUT_FILENO);
  Redirect err(STDERR_FILENO);
  body();
  std::fflush(stdout);
  std::fflush(stderr);
  CapturedOutput captured;
  captured.err = err.finish();
  captured.out = out.finish();
  return captured;
}

}  // namespace pavona::testing
