# Rebuilds the libc++ order generator and fails when its output differs from
# the committed tests/data/libcxx_sort_orders.txt.
# -DCLANGXX=<clang++> -DSOURCE_DIR=<tests dir> -DWORK_DIR=<scratch dir>
set(generator ${WORK_DIR}/libcxx_sort_orders)
execute_process(
  COMMAND ${CLANGXX} -std=c++17 -stdlib=libc++ -O1
          ${SOURCE_DIR}/tools/libcxx_sort_orders.cpp -o ${generator}
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${generator}
  OUTPUT_FILE ${generator}.txt
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E compare_files
          ${generator}.txt ${SOURCE_DIR}/data/libcxx_sort_orders.txt
  RESULT_VARIABLE differ)
if(differ)
  message(FATAL_ERROR "libc++ now sorts differently from "
          "tests/data/libcxx_sort_orders.txt; see ${generator}.txt")
endif()
