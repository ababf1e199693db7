# Regions of 1, 1000 and 1000000 turns of a two-instruction loop must count
# exactly 2 instructions more for every further turn, and the summary must
# agree with the regions.
execute_process(COMMAND ${QEMU} -plugin ${PLUGIN},out=${OUT} ${GUEST} 1 1000 1000000
  RESULT_VARIABLE status)
if(status)
  message(FATAL_ERROR "qemu-aarch64 with the plugin failed: ${status}")
endif()
file(STRINGS ${OUT} counts REGEX "region [0-9]+: ")
list(TRANSFORM counts REPLACE ".*: " "")
list(GET counts 0 one)
math(EXPR thousand "${one} + 2 * 999")
math(EXPR million "${one} + 2 * 999999")
file(STRINGS ${OUT} summary REGEX "regions ")
if(NOT counts STREQUAL "${one};${thousand};${million}" OR
   NOT summary MATCHES "regions 3 mean [0-9.]+ min ${one} max ${million}$")
  message(FATAL_ERROR "expected ${one};${thousand};${million}, got ${counts}; ${summary}")
endif()
