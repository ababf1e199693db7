#include "api/pavonaAPI.h"

#include <cstdarg>
#include <cstdio>

#include "api/log_sink.h"

int32_t gLogStatus = 1;

namespace {

constexpr char kBaseVersion[] = "SDK_BASE_20200330_version_1.0";

// The entry points' console sink: the only one that obeys gLogStatus.
void logPrint(int level, const char* format, ...) {
  if (gLogStatus == 0) {
    std::printf("close all log");
    return;
  }
  va_list args;
  va_start(args, format);
  pavona::printLogLine(level, gLogStatus, format, args);
  va_end(args);
}

}  // namespace

const char* getVersion() {
  // The base version is what the host gets; the program's own version
  // ("pavona_20210915_version_1.0") is never handed out.
  return kBaseVersion;
}

void setLogStatus(int32_t status) {
  gLogStatus = status;
  std::printf("set log status %d %d \n", status, status);
}

int32_t debugMode(void*, int32_t) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t startProcess(void*, void*) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t stopProcess(void*, void*) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t getProcessImageResult(void*, Image*, void*) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t setParameters(void*, void*, int32_t) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t setParameters(void*, ImageAlgoBaseParameters*) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t processImage(void*, Image*, Image*, void*, void*) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t multiProcessImage(void*, MultInputImage*, Image*, void*, void*,
                          int32_t) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t fatalErrorStatus(void*, void*) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t dumpImage(void*, const char*, int32_t) {
  PAVONA_LOGE("the function not support");
  return 0;
}

int32_t getMemoryInfo(void*, void*) {
  PAVONA_LOGE("the function not support");
  return 0;
}

extern "C" PAVONA_EXPORT int32_t get_algo_api(PavonaApi* api) {
  if (api == nullptr) {
    return 0;
  }
  api->getVersion = getVersion;
  api->setLogStatus = setLogStatus;
  api->debugMode = debugMode;
  api->startProcess = startProcess;
  api->stopProcess = stopProcess;
  api->getProcessImageResult = getProcessImageResult;
  api->setParameters = setParameters;
  api->processImage = processImage;
  api->multiProcessImage = multiProcessImage;
  api->fatalErrorStatus = fatalErrorStatus;
  api->dumpImage = dumpImage;
  api->getMemoryInfo = getMemoryInfo;
  return 0;
}
