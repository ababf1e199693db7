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
endif()
