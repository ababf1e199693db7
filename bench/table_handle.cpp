#include "bench/table_handle.h"

namespace bench {

TableHandle::TableHandle() {
  get_algo_api(&api_);
  api_.setLogStatus(0);
  InitParamData init{};
  init.width = kFrameWidth;
  init.height = kFrameHeight;
  init.format = IMAGE_FORMAT_NV21;
  api_.algoInitHandle(&handle_, &init);
}

TableHandle::~TableHandle() { api_.releaseHandle(handle_, nullptr); }

void TableHandle::process(Nv21Frame frame, ProcessParamData& param) {
  Image image{};
  image.format = IMAGE_FORMAT_NV21;
  image.width = kFrameWidth;
  image.height = kFrameHeight;
  image.stride = kFrameStride;
  image.yPlane = frame.y;
  image.uvPlane = frame.vu;
  process(image, param);
}

void TableHandle::process(Image& image, ProcessParamData& param) {
  api_.singleProcessImage(handle_, &image, &param, nullptr);
}

}  // namespace bench
