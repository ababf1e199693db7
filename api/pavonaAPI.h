// The sixteen entry points behind the PavonaApi table, plus the second
// setParameters overload that the table does not carry.
#ifndef PAVONA_API_PAVONAAPI_H_
#define PAVONA_API_PAVONAAPI_H_

#include <cstdint>

#include "api/pavona_host.h"
#include "base/export.h"

// Console log switch: 0 silences the entry points' own lines. Read only by
// the entry points' sink; the facade and k-means sinks ignore it.
extern int32_t gLogStatus;

PAVONA_EXPORT const char* getVersion();
PAVONA_EXPORT void setLogStatus(int32_t status);
PAVONA_EXPORT int32_t algoInitHandle(void** pHandle, void* pInitParam);
PAVONA_EXPORT int32_t debugMode(void* handle, int32_t mode);
PAVONA_EXPORT int32_t isSupportFormat(void* handle, int32_t format);
PAVONA_EXPORT int32_t startProcess(void* handle, void* param);
PAVONA_EXPORT int32_t stopProcess(void* handle, void* param);
PAVONA_EXPORT int32_t getProcessImageResult(void* handle, Image* image,
                                            void* param);
PAVONA_EXPORT int32_t setParameters(void* handle, void* param, int32_t value);
PAVONA_EXPORT int32_t setParameters(void* handle,
                                    ImageAlgoBaseParameters* param);
PAVONA_EXPORT int32_t singleProcessImage(void* handle, Image* image,
                                         void* pParam, void* reserved);
PAVONA_EXPORT int32_t processImage(void* handle, Image* in, Image* out,
                                   void* param, void* reserved);
PAVONA_EXPORT int32_t multiProcessImage(void* handle, MultInputImage* in,
                                        Image* out, void* param, void* reserved,
                                        int32_t count);
PAVONA_EXPORT int32_t fatalErrorStatus(void* handle, void* param);
PAVONA_EXPORT int32_t releaseHandle(void* handle, void* ptr);
PAVONA_EXPORT int32_t dumpImage(void* handle, const char* path, int32_t value);
PAVONA_EXPORT int32_t getMemoryInfo(void* handle, void* info);

#endif  // PAVONA_API_PAVONAAPI_H_
