# pavona_find_gstreamer(PREFIX module...): pkg_check_modules(PREFIX QUIET
# IMPORTED_TARGET GLOBAL module...) for GStreamer's modules, on the build
# machine only (PREFIX_FOUND stays false when cross-compiling).
#
# gstreamer-1.0.pc names libunwind privately (static links only), but
# clang's libunwind-14-dev stands in for libunwind-dev without a .pc file,
# and pkg-config then refuses GStreamer: an empty one will do. Asked anew on
# every configuration, since clang's runtimes (install-deps fuzz) replace
# libunwind-dev after a first configuration may have found it.
# PkgConfig is found in the including scope, where callers may go on to ask
# it for more.
find_package(PkgConfig QUIET)
if(PKG_CONFIG_FOUND AND NOT CMAKE_CROSSCOMPILING)
  execute_process(COMMAND ${PKG_CONFIG_EXECUTABLE} --exists libunwind
    RESULT_VARIABLE pavona_unwind_missing)
  if(pavona_unwind_missing)
    set(pavona_unwind_shim ${PROJECT_BINARY_DIR}/pkgconfig-shim)
    file(WRITE ${pavona_unwind_shim}/libunwind.pc
      "Name: libunwind\nDescription: stand-in, linked statically only\n"
      "Version: 1.6\n")
    set(ENV{PKG_CONFIG_PATH} "${pavona_unwind_shim}:$ENV{PKG_CONFIG_PATH}")
  endif()
endif()
function(pavona_find_gstreamer prefix)
  set(${prefix}_FOUND FALSE PARENT_SCOPE)
  if(CMAKE_CROSSCOMPILING OR NOT PKG_CONFIG_FOUND)
    return()
  endif()
  pkg_check_modules(${prefix} QUIET IMPORTED_TARGET GLOBAL ${ARGN})
  set(${prefix}_FOUND ${${prefix}_FOUND} PARENT_SCOPE)
endfunction()
