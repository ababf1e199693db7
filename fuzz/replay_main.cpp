// Runs a fuzz target once on each input named on the command line, or on
// every file of each directory named: the corpora as plain regression
// inputs, without libFuzzer.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void runFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(file)),
                                   std::istreambuf_iterator<char>());
  // A copy of exactly the input's size, so reads past its end are caught.
  std::vector<uint8_t> input(bytes);
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
  int inputs = 0;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path arg(argv[i]);
    if (std::filesystem::is_directory(arg)) {
      std::vector<std::filesystem::path> files;
      for (const auto& entry : std::filesystem::directory_iterator(arg)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
      }
      std::sort(files.begin(), files.end());
      for (const auto& file : files) {
        runFile(file);
        ++inputs;
      }
    } else {
      runFile(arg);
      ++inputs;
    }
  }
  std::fprintf(stderr, "replayed %d inputs\n", inputs);
  return 0;
}
