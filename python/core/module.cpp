#include "call.h"
#include "doppler.h"
#include "kernel.h"
#include "mapping.h"
#include "pool.h"
#include "resampling.h"

PYBIND11_MODULE(_core, module) {
  AddError(module);
  AddKernel(module);
  AddMapping(module);
  AddDoppler(module);
  AddResampling(module);
  AddPool(module);
}
