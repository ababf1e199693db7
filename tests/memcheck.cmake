# Valgrind's memcheck on programs that drive the library as a host does: no
# invalid access, no use of uninitialised memory, nothing definitely or
# indirectly lost. Native, uninstrumented builds only: valgrind cannot run
# sanitizer builds, and the cross build runs under qemu.
find_program(PAVONA_VALGRIND valgrind)
if(PAVONA_VALGRIND AND NOT CMAKE_CROSSCOMPILING
   AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  set(PAVONA_MEMCHECK ${PAVONA_VALGRIND} --error-exitcode=1 --leak-check=full
      --errors-for-leak-kinds=definite,indirect)
  if(TARGET host_example)
    add_test(NAME Memcheck.host_example
      COMMAND ${PAVONA_MEMCHECK} $<TARGET_FILE:host_example>)
  endif()
  # One tool run through every stage: JPEG decoding, conversion, a frame
  # with the preview drawn and written as PNG, JSON output.
  if(TARGET pavona_cli)
    add_test(NAME Memcheck.pavona_tool
      COMMAND ${PAVONA_MEMCHECK} $<TARGET_FILE:pavona_cli> --json -k 5
        --seed 1 --preview ${CMAKE_CURRENT_BINARY_DIR}/memcheck-preview.png
        ${PROJECT_SOURCE_DIR}/samples/coffee.jpg)
  endif()
endif()
