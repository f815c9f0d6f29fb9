#include "core_job.h"

#include <algorithm>
#include <utility>

#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

CORE_JOB::CORE_JOB(const SCENE& scene) {
  WriteSceneFiles(scene, directory_.Path());
  const auto file = [&](const char* name) { return directory_.File(name); };
  input_.slave.Map(file("slave.ras").c_str(), 0);
  if (scene.mask) {
    input_.mask.Map(file("mask.ras").c_str(), 0);
  }
  BASIC::TYPES::KernelType type;
  type.Assign(scene.kernel_type.c_str());
  input_.kernel.InitKernel(type, scene.kernel_length, scene.subpix_positions,
                           static_cast<float>(scene.kernel_coefficient));
  PARAMETER_POOL pool(file("slave.pool").c_str());
  input_.doppler.Setup(pool);
  input_.doppler.range_start_time = scene.doppler.first_range_time;
  input_.doppler.azimuth_start_time = scene.doppler.first_azimuth_time;
  input_.imaging_mode.Assign(scene.imaging_mode.c_str());
  if (const auto* matrix = std::get_if<MATRIX_MAPPING_DATA>(&scene.mapping)) {
    input_.mapping =
        std::make_unique<MAPPING_MATRIX>(file("rg.map").c_str(), file("az.map").c_str(),
                                         matrix->range_subsampling, matrix->azimuth_subsampling);
  } else {
    input_.mapping = std::make_unique<MAPPING_POLYNOMIAL>(file("insar.pool").c_str());
  }
  input_.n_samples = scene.n_samples;
  input_.n_lines = scene.n_lines;
  input_.ps_mode = scene.ps_mode == 1;
  const int last_sample = scene.n_samples - 1;
  const int last_line = scene.n_lines - 1;
  output_.slave.CreateInMemory(0, 0, last_sample, last_line, input_.slave.PixelType());
  output_.mask.CreateInMemory(0, 0, last_sample, last_line, PIXEL_TYPE::U_INT_8);
  job_ = input_.Job(output_);
  ClearOutputs();
}

void CORE_JOB::ClearOutputs() {
  for (const MEM_MGR* raster : {&output_.slave, &output_.mask}) {
    std::fill_n(raster->Data(), raster->DataLength(), untouched);
  }
}

void CORE_JOB::Resample(const std::function<void(const RESAMPLE_THR_ARG&)>& resample,
                        std::vector<unsigned> block_ends) {
  RESAMPLE_THR_ARG argument;
  argument.worker_number = 1;
  argument.Set(job_);
  block_ends.push_back(static_cast<unsigned>(job_.output_height));
  unsigned first = 0;
  for (const unsigned end : block_ends) {
    argument.block = URANGE<unsigned int>(first, end - first);
    resample(argument);
    first = end;
  }
}

void CORE_JOB::Resample(const CORE_VARIANT& variant, std::vector<unsigned> block_ends) {
  Resample([&](const RESAMPLE_THR_ARG& argument) { variant.Resample(argument); },
           std::move(block_ends));
}

std::vector<unsigned char> CORE_JOB::OutputBytes() const {
  return {output_.slave.Data(), output_.slave.Data() + output_.slave.DataLength()};
}

std::vector<unsigned char> CORE_JOB::MaskBytes() const {
  return {output_.mask.Data(), output_.mask.Data() + output_.mask.DataLength()};
}
