// A handle of the plug-in set up for 4000 x 3000 NV21 frames, reached as a
// camera host reaches it: through the entry table, logs off.
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

  // singleProcessImage on one 4000 x 3000 frame.
  void process(Nv21Frame frame, ProcessParamData& param);
  // singleProcessImage on an image of any size, which the handle resamples
  // to its working size.
  void process(Image& image, ProcessParamData& param);

 private:
  PavonaApi api_{};
  void* handle_ = nullptr;
};

}  // namespace bench

#endif  // PAVONA_BENCH_TABLE_HANDLE_H_
