#include "api/pavonaAPI.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "api/frame_info.h"
#include "api/pavona.h"
#include "base/log_sink.h"

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

int32_t algoInitHandle(void** pHandle, void* pInitParam) {
  auto pavona = std::make_unique<Pavona>();
  if (pInitParam == nullptr) {
    // Wording kept from the first release although nothing ran out.
    PAVONA_LOGE("out of memory");
    return STATUS_NO_INIT_PARAM;
  }
  pavona->pavonaPrintVersion();
  pavona->pavonaInit(pInitParam);
  *pHandle = pavona.release();
  return 0;
}

int32_t singleProcessImage(void* handle, Image* image, void* pParam, void*) {
  PAVONA_LOGI("the pavona %p", handle);
  if (handle != nullptr && image != nullptr && pParam != nullptr) {
    static_cast<Pavona*>(handle)->pavonaProcess(image, pParam);
    return 0;
  }
  if (handle != nullptr) {
    pavona::recordRefusedFrame(*static_cast<Pavona*>(handle));
  }
  // Hosts match this line as it has always been printed, "%P" included.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
  PAVONA_LOGE("pavona %p pImage1 %p pParam %P", handle,
              static_cast<void*>(image), pParam);
#pragma GCC diagnostic pop
  return 0;
}

int32_t isSupportFormat(void* handle, int32_t format) {
  PAVONA_LOGI("the pavona %p", handle);
  if (handle != nullptr) {
    static_cast<Pavona*>(handle)->isSupportFormat(format);
  } else {
    PAVONA_LOGE("pHandle is null");
  }
  return 0;
}

int32_t releaseHandle(void* handle, void* ptr) {
  if (handle != nullptr) {
    auto* pavona = static_cast<Pavona*>(handle);
    pavona->pavonaDestory();
    delete pavona;
  }
  if (ptr != nullptr) {
    std::free(ptr);
  }
  return 0;
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
  api->algoInitHandle = algoInitHandle;
  api->debugMode = debugMode;
  api->isSupportFormat = isSupportFormat;
  api->startProcess = startProcess;
  api->stopProcess = stopProcess;
  api->getProcessImageResult = getProcessImageResult;
  api->setParameters = setParameters;
  api->singleProcessImage = singleProcessImage;
  api->processImage = processImage;
  api->multiProcessImage = multiProcessImage;
  api->fatalErrorStatus = fatalErrorStatus;
  api->releaseHandle = releaseHandle;
  api->dumpImage = dumpImage;
  api->getMemoryInfo = getMemoryInfo;
  return 0;
}
