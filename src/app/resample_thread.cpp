#include "app/resample_thread.h"

#include <string>

#include "base/error_exception.h"
#include "base/memory_for.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

template <class CODEC>
void RunCore(const RESAMPLE_WORK& work) {
  using PIXEL = typename CODEC::PIXEL;
  const RESAMPLE_FUNCTION<CODEC> resample = work.core->Function<CODEC>();
  resample(work, work.job.input_slave->Rows<PIXEL>(), work.job.output_slave->Rows<PIXEL>());
}

/// Calls `handle` with the codec of the slave's pixels.
template <class HANDLE>
void WithCodec(PIXEL_TYPE type, const HANDLE& handle) {
  switch (type) {
    case PIXEL_TYPE::C_INT_16:
      handle(INT_16_CODEC());
      break;
    case PIXEL_TYPE::C_FLT_2:
      handle(BINARY_16_CODEC());
      break;
    default:
      Log() << ALARM << "ERROR : Non supported pixel type has been provided.";
      throw "not supported pixel type";
  }
}

void ResampleBlock(const RESAMPLE_WORK& work) {
  const URANGE<unsigned int>& block = work.block;
  Log().Message(TRACE, "Thread %d, getstart = %u,getend = %u", work.worker_number, block.First(),
                block.Last());
  const PIXEL_TYPE type = work.job.input_slave->PixelType();
  if (type != work.job.output_slave->PixelType()) {
    Log() << ALARM << "ERROR : Both input images must have the same type.";
    throw ERROR_DATA();
  }
  WithCodec(type, [&]<class CODEC>(CODEC) { RunCore<CODEC>(work); });
}

}  // namespace

void CheckPixelTypeIsSupported(PIXEL_TYPE type) {
  WithCodec(type, [](auto) {});
}

void ResampleThread(RESAMPLE_WORK& work) {
  WithMemoryFor("worker", std::to_string(work.worker_number), [&] { ResampleBlock(work); });
}
