#include "app/resample_run.h"

#include <optional>
#include <vector>

#include "app/input_setup.h"
#include "app/output_setup.h"
#include "app/parameter_check.h"
#include "app/resampling.h"
#include "base/memory_for.h"
#include "logging/logging.h"
#include "raster/write_back.h"

using enum LOGGING_LEVEL_T;

void RESAMPLE_RUN::Execute(const VERSION_RECORD& version) {
  WithMemoryFor("step", "Read input parameters", [&] { ReadParameters(); });
  WithMemoryFor("step", "Initialize Kernels", [&] { InitializeKernels(); });
  WithMemoryFor("step", "Map input slave and mask", [&] { MapSlaveAndMask(); });
  WithMemoryFor("step", "Setup input mapping", [&] { SetupMapping(); });
  WithMemoryFor("step", "Allocate output", [&] { AllocateOutput(); });
  WithMemoryFor("step", "Setup SLC parameters", [&] { SetupSlcParameters(); });
  WithMemoryFor("step", "Perform processing", [&] { PerformProcessing(); });
  WithMemoryFor("step", "Memory de-allocation", [&] { ReleaseMemory(version); });
}

void RESAMPLE_RUN::ReadParameters() {
  Log().Message(INFO, "* Read input parameters");
  pools_.OpenInsarPool(controller_);
  pools_.OpenLogPool(controller_);
  parameters_ = ReadRunParameters(controller_, pools_);
  EchoRunParameters(parameters_, pools_.insar_name);
  WarnOfUnknownParameters(controller_);
  input_.n_samples = parameters_.size.n_samples;
  input_.n_lines = parameters_.size.n_lines;
  input_.ps_mode = parameters_.ps_mode;
}

void RESAMPLE_RUN::InitializeKernels() {
  Log().Message(INFO, "* Initialize Kernels");
  BuildKernel(parameters_.kernel, input_);
}

void RESAMPLE_RUN::MapSlaveAndMask() {
  Log().Message(INFO, "* Map input slave and mask");
  MapSlave(parameters_.inputs.slave, input_);
  if (parameters_.inputs.mask) {
    MapMask(*parameters_.inputs.mask, input_);
    input_.CheckMask();
  }
}

void RESAMPLE_RUN::SetupMapping() {
  Log().Message(INFO, "* Setup input mapping");
  OpenMapping(parameters_.mapping, *pools_.insar, input_);
}

void RESAMPLE_RUN::AllocateOutput() {
  Log().Message(INFO, "* Allocate output resampled image and its mask");
  CheckOutputPaths(parameters_.outputs, FilesInUse(parameters_, pools_, controller_));
  CreateOutput(parameters_.outputs, input_, output_);
}

void RESAMPLE_RUN::SetupSlcParameters() {
  Log().Message(INFO, "* Setup SLC parameters");
  ReadAnnotation(parameters_.inputs.slave_pool, *pools_.insar, input_);
}

void RESAMPLE_RUN::PerformProcessing() {
  Log().Message(INFO, "* Perform processing");
  std::optional<WRITE_BACK> write_back;
  if (parameters_.flush_outputs) {
    write_back.emplace(std::vector<const MEM_MGR*>{&output_.slave, &output_.mask});
  }
  Resample(input_, output_);
  if (write_back) {
    write_back->Finish();
  }
}

void RESAMPLE_RUN::ReleaseMemory(const VERSION_RECORD& version) {
  Log().Message(INFO, "* Memory de-allocation");
  input_.mapping.reset();
  pools_.Update(version);
}
