# Android::log — the real __android_log_print. The NDK provides liblog on
# Android; on Debian, android-liblog-dev installs it under
# /usr/lib/<triplet>/android with headers under /usr/include/android.
if(ANDROID)
  find_library(ANDROID_LOG_LIBRARY log REQUIRED)
  set(ANDROID_LOG_INCLUDE_DIR "")
else()
  find_library(ANDROID_LOG_LIBRARY log REQUIRED
    PATHS /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/android
    NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  find_path(ANDROID_LOG_INCLUDE_DIR android/log.h REQUIRED
    PATHS /usr/include/android NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
endif()

add_library(Android::log UNKNOWN IMPORTED)
set_target_properties(Android::log PROPERTIES IMPORTED_LOCATION "${ANDROID_LOG_LIBRARY}")
if(ANDROID_LOG_INCLUDE_DIR)
  set_target_properties(Android::log PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "${ANDROID_LOG_INCLUDE_DIR}")
  # Debian keeps liblog out of the loader's default path.
  get_filename_component(_pavona_liblog_dir "${ANDROID_LOG_LIBRARY}" DIRECTORY)
  set_property(TARGET Android::log APPEND PROPERTY
    INTERFACE_LINK_OPTIONS "-Wl,-rpath,${_pavona_liblog_dir}")
endif()
