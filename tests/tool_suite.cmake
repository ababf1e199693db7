# The pavona tool's tests: its input and output stages linked directly, and
# the built binary run as a subprocess. Only where the tool is built.
if(NOT TARGET pavona_tool_io)
  return()
endif()

find_package(nlohmann_json REQUIRED)
pavona_add_suite(tool_test tool_io_test.cpp tool_cli_test.cpp
  tool_run_test.cpp tool_video_test.cpp tool_subprocess.cpp
  sample_palettes_test.cpp)
target_link_libraries(tool_test PRIVATE pavona_tool_cli pavona_tracker
  nlohmann_json::nlohmann_json)
add_dependencies(tool_test pavona_cli)
target_compile_definitions(tool_test PRIVATE
  PAVONA_SAMPLES_DIR="${PROJECT_SOURCE_DIR}/samples"
  PAVONA_TOOL_PATH="$<TARGET_FILE:pavona_cli>"
  PAVONA_TOOL_LSAN_SUPPRESSIONS="${CMAKE_CURRENT_SOURCE_DIR}/tool_lsan.supp"
  PAVONA_PROJECT_VERSION="${PROJECT_VERSION}")
