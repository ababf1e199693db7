# What `cmake --install` gives an integrator: libPavona.so, the two public
# headers, a CMake package (find_package(Pavona) -> Pavona::pavona) and a
# pkg-config file. Everything else in the tree stays private.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(PAVONA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Pavona)

# The engine's objects are linked into the shared library, not exported:
# consumers only ever see the library and the two public headers. Hosts load
# the plug-in as plain libPavona.so, so it carries no soname version.
set_target_properties(pavona PROPERTIES
  PUBLIC_HEADER "${PROJECT_SOURCE_DIR}/api/pavona_host.h;${PROJECT_SOURCE_DIR}/api/pavona_ext.h"
  EXPORT_NAME pavona
  # Debian keeps liblog out of the loader's path; keep finding it there.
  INSTALL_RPATH_USE_LINK_PATH ON)

install(TARGETS pavona EXPORT PavonaTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  PUBLIC_HEADER DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT PavonaTargets
  NAMESPACE Pavona::
  DESTINATION ${PAVONA_CMAKE_DIR})

configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/PavonaConfig.cmake.in
  ${PROJECT_BINARY_DIR}/PavonaConfig.cmake
  INSTALL_DESTINATION ${PAVONA_CMAKE_DIR})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/PavonaConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/PavonaConfig.cmake
  ${PROJECT_BINARY_DIR}/PavonaConfigVersion.cmake
  DESTINATION ${PAVONA_CMAKE_DIR})

# The .pc file finds its prefix from where it lies, so an installed tree
# can be moved (or installed with --prefix) and still be right.
set(PAVONA_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH PAVONA_PC_TO_PREFIX
  /prefix/${PAVONA_PKGCONFIG_DIR} /prefix)
string(REGEX REPLACE "/$" "" PAVONA_PC_TO_PREFIX "${PAVONA_PC_TO_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/pavona.pc.in
  ${PROJECT_BINARY_DIR}/pavona.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/pavona.pc
  DESTINATION ${PAVONA_PKGCONFIG_DIR})
