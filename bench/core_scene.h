#pragma once

#include "core/resample_input.h"

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
  RESAMPLE_INPUT input_;
  RESAMPLE_OUTPUT output_;
  RESAMPLE_THR_ARG argument_;
};
