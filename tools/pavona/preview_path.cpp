#include "tools/pavona/preview_path.h"

#include <cctype>
#include <filesystem>
#include <system_error>

namespace pavona::tool {

std::string previewPath(const std::string& option, const std::string& input,
                        size_t index, size_t count) {
  std::error_code ignored;
  if (option.back() == '/' || std::filesystem::is_directory(option, ignored)) {
    const std::string stem = std::filesystem::path(input).stem().string();
    return (std::filesystem::path(option) / (stem + ".png")).string();
  }
  if (count == 1) return option;
  const std::string number = "-" + std::to_string(index + 1);
  const size_t dot = option.size() >= 4 ? option.size() - 4 : 0;
  std::string ending = option.substr(dot);
  for (char& c : ending) c = static_cast<char>(std::tolower(c));
  if (ending == ".png")
    return option.substr(0, dot) + number + option.substr(dot);
  return option + number;
}

}  // namespace pavona::tool
