#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "core/resample_thr_arg.h"

/// One timed case of the core.
struct CORE_CASE {
  enum class MAPPING { SMOOTH, STEEP, POLYNOMIAL, IRREGULAR };

  const char* name = "";
  PIXEL_TYPE pixel_type = PIXEL_TYPE::C_INT_16;
  int length = 8;
  int subpix_count = 64;
  bool with_rate = false;
  bool with_mask = false;
  MAPPING mapping = MAPPING::SMOOTH;
};

/// A square scene in memory for one case: noise as slave, a mask with some invalid patches, a
/// centroid of 5 polynomials of 4 coefficients, a mapping as the case wants it (matrices at
/// every 32nd pixel), and outputs.
class CORE_SCENE {
 public:
  CORE_SCENE(const CORE_CASE& wanted, int size);

  /// The argument of a single worker for the whole output.
  const RESAMPLE_THR_ARG& Argument() const { return argument_; }

 private:
  void TouchOutputs();
  void FillSlave();
  void FillMask();
  void SetupDoppler();
  void SetupMapping(CORE_CASE::MAPPING wanted);
  void SetupPolynomial();
  void SetupMatrices(int subsampling, double (*shift)(double, double));

  const int size_;
  std::filesystem::path directory_;
  MEM_MGR input_;
  MEM_MGR input_mask_;
  MEM_MGR output_;
  MEM_MGR output_mask_;
  INTERPOLATION_KERNEL kernel_;
  DOPPLER_CENTROID_MODEL doppler_;
  ZARVO::ImageMode imaging_mode_;
  std::unique_ptr<MAPPING_BASE> mapping_;
  RESAMPLE_THR_ARG argument_;
};
