// A handle of the plug-in for 4000 x 3000 NV21 frames, reached as a camera
// host reaches it: through the entry table, logs off.
#ifndef PAVONA_BENCH_TABLE_HANDLE_H_
#define PAVONA_BENCH_TABLE_HANDLE_H_

#include "api/pavona_host.h"
#include "bench/nv21_frames.h"

namespace bench {

class TableHandle {
 public:
  TableHandle();
  ~TableHandle();
  TableHandle(const TableHandle&) = delete;
  TableHandle& operator=(const TableHandle&) = delete;

  // singleProcessImage on one frame.
  void process(Nv21Frame frame, ProcessParamData& param);

 private:
  PavonaApi api_{};
  void* handle_ = nullptr;
};

}  // namespace bench

#endif  // PAVONA_BENCH_TABLE_HANDLE_H_
