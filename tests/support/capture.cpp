#include "tests/support/capture.h"

#include <unistd.h>

#include <cstdio>
#include <stdexcept>

namespace pavona::testing {
namespace {

// Sends `fd` to a temporary file until finish(), or the end of the scope
// if `body` throws.
class Redirect {
 public:
  explicit Redirect(int fd) : fd_(fd), file_(std::tmpfile()), saved_(dup(fd)) {
    if (file_ == nullptr || saved_ < 0 || dup2(fileno(file_), fd_) < 0) {
      throw std::runtime_error("cannot redirect output");
    }
  }
  Redirect(const Redirect&) = delete;
  Redirect& operator=(const Redirect&) = delete;
  ~Redirect() {
    finish();
    std::fclose(file_);
  }

  std::string finish() {
    std::fflush(nullptr);
    if (saved_ >= 0) {
      dup2(saved_, fd_);
      close(saved_);
      saved_ = -1;
    }
    std::string text;
    std::rewind(file_);
    for (int c; (c = std::fgetc(file_)) != EOF;) text += static_cast<char>(c);
    return text;
  }

 private:
  int fd_;
  std::FILE* file_;
  int saved_;
};

}  // namespace

CapturedOutput captureOutput(const std::function<void()>& body) {
  std::fflush(nullptr);
  Redirect out(STDOUT_FILENO);
  Redirect err(STDERR_FILENO);
  body();
  CapturedOutput captured;
  captured.err = err.finish();
  captured.out = out.finish();
  return captured;
}

}  // namespace pavona::testing
