#pragma once

#include "call.h"
#include "core/doppler_centroid_model.h"

/// Timing and centroid as Python gives them.
struct DOPPLER {
  DOPPLER_ANNOTATION annotation;
  double first_azimuth_time = 0.0;
  double first_range_time = 0.0;

  /// Throws the errors of `DOPPLER_CENTROID_MODEL::Setup`.
  void Build(DOPPLER_CENTROID_MODEL& model) const;
};

/// Adds the class `Doppler`.
void AddDoppler(pybind11::module_& module);
