#include "app/resample_thread.h"

#include <string>

#include "base/error_exception.h"
#include "base/memory_for.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

void DoWork(const RESAMPLE_WORK& work) {
  const URANGE<unsigned int>& block = work.block;
  Log().Message(TRACE, "Thread %d, getstart = %u,getend = %u", work.worker_number, block.First(),
                block.Last());
  if (work.job.input_slave->PixelType() != work.job.output_slave->PixelType()) {
    Log() << ALARM << "ERROR : Both input images must have the same type.";
    throw ERROR_DATA();
  }
  work.core->Resample(work);
}

}  // namespace

void ResampleThread(RESAMPLE_WORK& work) {
  WithMemoryFor("worker", std::to_string(work.worker_number), [&] { DoWork(work); });
}
