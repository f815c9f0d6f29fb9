#pragma once

#include <memory>

#include "base/array.h"
#include "base/setup_steps.h"
#include "base/tuple.h"
#include "interpolation/local_interpolation.h"
#include "interpolation/polynom.h"
#include "pool/parameter_pool.h"

/// Timing of the slave and its Doppler centroid frequency at any azimuth and range time.
///
/// The annotation is a series of polynomials in range time, each valid at one azimuth time and
/// expanded around its own reference range time. Reference time and coefficients are
/// interpolated along azimuth, linearly between neighbouring annotation times; the end pieces
/// extrapolate. Times are in seconds, frequencies in hertz.
class DOPPLER_CENTROID_MODEL {
 public:
  /// Start times of the slave's first line and first sample; set by the driver.
  double azimuth_start_time = 0.0;
  double range_start_time = 0.0;

  DOPPLER_CENTROID_MODEL() = default;
  DOPPLER_CENTROID_MODEL(const DOPPLER_CENTROID_MODEL&) = delete;
  DOPPLER_CENTROID_MODEL& operator=(const DOPPLER_CENTROID_MODEL&) = delete;

  /// Reads "prf", "range_sampling_frequency", "oversampling", "fdc_poly_az_time",
  /// "fdc_poly_rg_ref_time" and "fdc_poly_coeff" (row i: coefficients of polynomial i, column k:
  /// degree k). Throws the pool's errors, and ERROR_DATA for an annotation that defines no
  /// centroid: no polynomial or coefficient, lengths that differ, times or coefficients that are
  /// no numbers, azimuth times that do not rise, rates that are not positive numbers. Every entry
  /// is a step.
  void Setup(PARAMETER_POOL& slave_pool, const SETUP_STEPS& steps = SETUP_STEPS());

  double Prf() const noexcept { return prf_; }
  double RangeSamplingFrequency() const noexcept { return range_sampling_frequency_; }
  /// Oversampling factor of the image grid: lines follow each other at oversampling * PRF.
  double Oversampling() const noexcept { return oversampling_; }

  /// Centroid frequency [Hz] at an azimuth and a range time [s]: the polynomial
  /// sum over k of c_k(azimuth_time) * (range_time - t_ref(azimuth_time))^k.
  double Frequency(double azimuth_time, double range_time) const;

  int CoefficientCount() const noexcept { return coefficient_count_; }
  /// The polynomial of one azimuth time: fills `coefficients`, lowest degree first, and returns the
  /// reference time.
  double PolynomialAt(double azimuth_time, double* coefficients) const;

 private:
  using POINTS = ARRAY<POINT<double>>;
  using INTERPOLATION_OVER_AZIMUTH = LOCAL_INTERPOLATION<double, POLYNOM<double>, POINT<double>>;

  /// Values over azimuth time with the interpolation that refers to them.
  struct AZIMUTH_SERIES {
    POINTS points;
    INTERPOLATION_OVER_AZIMUTH interpolation;
  };

  void ReadRates(PARAMETER_POOL& slave_pool, const SETUP_STEPS& steps);
  void CheckRates() const;

  double prf_ = 0.0;
  double range_sampling_frequency_ = 0.0;
  double oversampling_ = 0.0;
  int coefficient_count_ = 0;
  AZIMUTH_SERIES reference_time_;
  std::unique_ptr<AZIMUTH_SERIES[]> coefficients_;
};
