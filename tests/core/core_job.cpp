#include "core_job.h"

#include <algorithm>

#include "mapping/mapping_matrix.h"
#include "mapping/mapping_polynomial.h"

CORE_JOB::CORE_JOB(const SCENE& scene) {
  WriteSceneFiles(scene, directory_.Path());
  const auto file = [&](const char* name) { return directory_.File(name); };
  input_.Map(file("slave.ras").c_str(), 0);
  if (scene.mask) {
    input_mask_.Map(file("mask.ras").c_str(), 0);
    job_.input_mask = &input_mask_;
  }
  output_.CreateInMemory(0, 0, scene.n_samples - 1, scene.n_lines - 1, input_.PixelType());
  output_mask_.CreateInMemory(0, 0, scene.n_samples - 1, scene.n_lines - 1, PIXEL_TYPE::U_INT_8);
  BASIC::TYPES::KernelType type;
  type.Assign(scene.kernel_type.c_str());
  kernel_.InitKernel(type, scene.kernel_length, scene.subpix_positions,
                     static_cast<float>(scene.kernel_coefficient));
  PARAMETER_POOL pool(file("slave.pool").c_str());
  doppler_.Setup(pool);
  doppler_.range_start_time = scene.doppler.first_range_time;
  doppler_.azimuth_start_time = scene.doppler.first_azimuth_time;
  imaging_mode_.Assign(scene.imaging_mode.c_str());
  if (const auto* matrix = std::get_if<MATRIX_MAPPING_DATA>(&scene.mapping)) {
    mapping_ =
        std::make_unique<MAPPING_MATRIX>(file("rg.map").c_str(), file("az.map").c_str(),
                                         matrix->range_subsampling, matrix->azimuth_subsampling);
  } else {
    mapping_ = std::make_unique<MAPPING_POLYNOMIAL>(file("insar.pool").c_str());
  }
  job_.input_slave = &input_;
  job_.input_width = scene.slave.width;
  job_.input_height = scene.slave.height;
  job_.output_slave = &output_;
  job_.output_mask = &output_mask_;
  job_.output_width = scene.n_samples;
  job_.output_height = scene.n_lines;
  job_.mapping = mapping_.get();
  job_.kernel = &kernel_;
  job_.doppler = &doppler_;
  job_.imaging_mode = &imaging_mode_;
  job_.ps_mode = scene.ps_mode == 1;
  ClearOutputs();
}

void CORE_JOB::ClearOutputs() {
  std::fill_n(output_.Data(), output_.DataLength(), untouched);
  std::fill_n(output_mask_.Data(), output_mask_.DataLength(), untouched);
}

void CORE_JOB::Resample(const CORE_VARIANT& variant, std::vector<unsigned> block_ends) {
  if (input_.PixelType() == PIXEL_TYPE::C_INT_16) {
    Resample<INT_16_CODEC>(variant.int_16, std::move(block_ends));
  } else {
    Resample<BINARY_16_CODEC>(variant.binary_16, std::move(block_ends));
  }
}

std::vector<unsigned char> CORE_JOB::OutputBytes() const {
  return {output_.Data(), output_.Data() + output_.DataLength()};
}

std::vector<unsigned char> CORE_JOB::MaskBytes() const {
  return {output_mask_.Data(), output_mask_.Data() + output_mask_.DataLength()};
}
