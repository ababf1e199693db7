# Installs the build and consumes it as an integrator would. Native builds
# only: the consumer is compiled and run on this machine.
if(CMAKE_CROSSCOMPILING)
  return()
endif()
add_test(NAME install_test
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/install_test.sh
    ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR})
set_tests_properties(install_test PROPERTIES
  ENVIRONMENT "CFLAGS=${CMAKE_C_FLAGS};LDFLAGS=${CMAKE_EXE_LINKER_FLAGS}")
