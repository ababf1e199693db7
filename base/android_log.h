// Android log records of the engine: error priority, tag "pavona", and a
// message that starts "[%s][%d]: " with the function name and source line.
// On Linux the same liblog prints logcat-style lines on stderr.
#ifndef PAVONA_BASE_ANDROID_LOG_H_
#define PAVONA_BASE_ANDROID_LOG_H_

#include <android/log.h>

#define PAVONA_ALOG_AS(function, format, ...)                           \
  __android_log_print(ANDROID_LOG_ERROR, "pavona", "[%s][%d]: " format, \
                      function, __LINE__, ##__VA_ARGS__)
#define PAVONA_ALOGE(format, ...) \
  PAVONA_ALOG_AS(__func__, format, ##__VA_ARGS__)

#endif  // PAVONA_BASE_ANDROID_LOG_H_
