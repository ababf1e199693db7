# Android::log — the real __android_log_print. The NDK provides liblog on
# Android. Elsewhere it is, in this order: the library PAVONA_LIBLOG names
# (its headers in the default paths or beside it, ../include), one in the
# default search paths, or Debian's android-liblog-dev, which keeps it under
# /usr/lib/<triplet>/android and its headers under /usr/include/android.
if(ANDROID)
  find_library(ANDROID_LOG_LIBRARY log REQUIRED)
  set(ANDROID_LOG_INCLUDE_DIR "")
else()
  set(PAVONA_LIBLOG "" CACHE FILEPATH "liblog to link instead of searching for it")
  set(_pavona_debian_log /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android)
  if(PAVONA_LIBLOG)
    if(NOT EXISTS "${PAVONA_LIBLOG}")
      message(FATAL_ERROR "PAVONA_LIBLOG: no such file: ${PAVONA_LIBLOG}")
    endif()
    set(ANDROID_LOG_LIBRARY "${PAVONA_LIBLOG}")
  else()
    find_library(ANDROID_LOG_LIBRARY log)
    find_library(ANDROID_LOG_LIBRARY log PATHS ${_pavona_debian_log}
      NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  endif()
  if(NOT ANDROID_LOG_LIBRARY)
    message(FATAL_ERROR "liblog not found: install android-liblog-dev or set PAVONA_LIBLOG")
  endif()
  get_filename_component(_pavona_liblog_dir "${ANDROID_LOG_LIBRARY}" DIRECTORY)
  find_path(ANDROID_LOG_INCLUDE_DIR android/log.h
    HINTS ${_pavona_liblog_dir}/../include)
  find_path(ANDROID_LOG_INCLUDE_DIR android/log.h
    PATHS /usr/include/android NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(NOT ANDROID_LOG_INCLUDE_DIR)
    message(FATAL_ERROR "android/log.h not found: install android-liblog-dev or set ANDROID_LOG_INCLUDE_DIR")
  endif()
endif()

add_library(Android::log UNKNOWN IMPORTED)
set_target_properties(Android::log PROPERTIES IMPORTED_LOCATION "${ANDROID_LOG_LIBRARY}")
if(ANDROID_LOG_INCLUDE_DIR)
  set_target_properties(Android::log PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "${ANDROID_LOG_INCLUDE_DIR}")
  # A liblog outside the loader's default path (Debian's is) must still be
  # found when the library and the tests run.
  if(NOT _pavona_liblog_dir IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
    set_property(TARGET Android::log APPEND PROPERTY
      INTERFACE_LINK_OPTIONS "-Wl,-rpath,${_pavona_liblog_dir}")
  endif()
endif()
