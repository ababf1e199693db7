// Console log lines shared by the three logging units (entry points, facade,
// k-means). Each unit defines its own `logPrint(level, format, ...)`; the
// PAVONA_LOGE / PAVONA_LOGI macros call whichever `logPrint` is in scope and
// supply the source file's base name, the line and the function name.
#ifndef PAVONA_BASE_LOG_SINK_H_
#define PAVONA_BASE_LOG_SINK_H_

#include <cstdarg>

namespace pavona {

enum LogLevel { LOG_LEVEL_ERROR = 1, LOG_LEVEL_INFO = 3 };

// Size of the per-call stack buffer a message is formatted into.
constexpr int kLogBufferSize = 1024;

// The text after the last '/' of `path`, or `path` itself when it has none.
const char* sourceBaseName(const char* path);

// Formats the message into a 1024-byte stack buffer and prints
// "set log status <level> <status> logText <message> \n" on stdout.
// A message that does not fit terminates the process, as a fortified
// formatter would.
void printLogLine(int level, int status, const char* format, va_list args);

// The sink of the units whose lines ignore the log switch (the facade and
// k-means): prints 1 where the switch's value would go.
void logPrintIgnoringSwitch(int level, const char* format, ...);

}  // namespace pavona

#define PAVONA_LOG_AT(level, tag, format, ...)                     \
  logPrint(level, "[" tag "][ %s ] %d  %s() " format,              \
           ::pavona::sourceBaseName(__FILE__), __LINE__, __func__, \
           ##__VA_ARGS__)
#define PAVONA_LOGE(format, ...) \
  PAVONA_LOG_AT(::pavona::LOG_LEVEL_ERROR, "ERROR", format, ##__VA_ARGS__)
#define PAVONA_LOGI(format, ...) \
  PAVONA_LOG_AT(::pavona::LOG_LEVEL_INFO, "INFO", format, ##__VA_ARGS__)

#endif  // PAVONA_BASE_LOG_SINK_H_
