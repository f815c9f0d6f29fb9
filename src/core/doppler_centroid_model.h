#pragma once

#include <memory>

#include "base/array.h"
#include "base/matrix.h"
#include "base/tuple.h"
#include "base/vector.h"
#include "interpolation/local_interpolation.h"
#include "interpolation/polynom.h"
#include "pool/parameter_pool.h"

/// What a slave's annotation says about its timing and its Doppler centroid.
struct DOPPLER_ANNOTATION {
  double prf = 0.0;                       ///< [Hz]
  double range_sampling_frequency = 0.0;  ///< [Hz]
  double oversampling = 1.0;              ///< of the image grid
  VECTOR<double> azimuth_times;           ///< of the polynomials [s], rising
  VECTOR<double> reference_times;         ///< the range times [s] that they are expanded around
  MATRIX<double> coefficients;  ///< row i: of polynomial i, column k: of degree k [Hz / s^k]

  int PolynomialCount() const { return azimuth_times.Size(); }
  int CoefficientCount() const { return coefficients.Columns().Count(); }
  double AzimuthTime(int polynomial) const { return azimuth_times.Pointer(0)[polynomial]; }
  double ReferenceTime(int polynomial) const { return reference_times.Pointer(0)[polynomial]; }
  double Coefficient(int polynomial, int degree) const {
    return coefficients.At(coefficients.Rows().First() + polynomial,
                           coefficients.Columns().First() + degree);
  }
};

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
  /// "fdc_poly_rg_ref_time" and "fdc_poly_coeff", which are the annotation in its order, and sets
  /// up. Throws the pool's errors besides.
  void Setup(PARAMETER_POOL& slave_pool);
  /// Throws ERROR_DATA for an annotation that defines no centroid: no polynomial or coefficient,
  /// lengths that differ, times or coefficients that are no numbers, azimuth times that do not
  /// rise, rates that are not positive numbers; and ERROR_NO_MEMORY.
  void Setup(const DOPPLER_ANNOTATION& annotation);

  double Prf() const noexcept { return prf_; }
  double RangeSamplingFrequency() const noexcept { return range_sampling_frequency_; }
  /// Oversampling factor of the image grid: lines follow each other at oversampling * PRF.
  double Oversampling() const noexcept { return oversampling_; }

  /// Centroid frequency [Hz] at an azimuth and a range time [s]: the polynomial
  /// sum over k of c_k(azimuth_time) * (range_time - t_ref(azimuth_time))^k.
  double Frequency(double azimuth_time, double range_time) const;

  /// Times of the first and the last annotated polynomial [s].
  double FirstAzimuthTime() const noexcept { return reference_time_.points.Pointer(0)->x; }
  double LastAzimuthTime() const noexcept {
    return reference_time_.points.Pointer(0)[reference_time_.points.Size() - 1].x;
  }

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

  void SetRates(const DOPPLER_ANNOTATION& annotation);
  void SetPolynomials(const DOPPLER_ANNOTATION& annotation);

  double prf_ = 0.0;
  double range_sampling_frequency_ = 0.0;
  double oversampling_ = 0.0;
  int coefficient_count_ = 0;
  AZIMUTH_SERIES reference_time_;
  std::unique_ptr<AZIMUTH_SERIES[]> coefficients_;
};
