# The instruction counter of make bench-aarch64 (its plugin is built in
# bench/aarch64), proven exact on a static AArch64 guest loop. The plugin
# and guest carry no sanitizer, so one native run is enough; without the
# cross tools (scripts/install-deps test) the test is left out.
find_program(PAVONA_AARCH64_CC aarch64-linux-gnu-gcc)
find_program(PAVONA_QEMU_AARCH64 qemu-aarch64)
if(CMAKE_CXX_FLAGS MATCHES "-fsanitize" OR NOT PAVONA_AARCH64_CC
   OR NOT PAVONA_QEMU_AARCH64)
  return()
endif()
set(guest ${CMAKE_CURRENT_BINARY_DIR}/insn_count_loop)
add_custom_command(OUTPUT ${guest}
  COMMAND ${PAVONA_AARCH64_CC} -O2 -static -I${PROJECT_SOURCE_DIR}
    ${CMAKE_CURRENT_SOURCE_DIR}/insn_count_loop.c -o ${guest}
  DEPENDS insn_count_loop.c ${PROJECT_SOURCE_DIR}/bench/aarch64/count_marker.h)
add_custom_target(insn_count_guest ALL DEPENDS ${guest} pavona_insn_count)
add_test(NAME InsnCount.RegionOfNTurnsCountsNTimesOneTurn COMMAND ${CMAKE_COMMAND}
  -DQEMU=${PAVONA_QEMU_AARCH64} -DPLUGIN=$<TARGET_FILE:pavona_insn_count>
  -DGUEST=${guest} -DOUT=${CMAKE_CURRENT_BINARY_DIR}/insn_count_loop.txt
  -P ${CMAKE_CURRENT_SOURCE_DIR}/insn_count_check.cmake)
