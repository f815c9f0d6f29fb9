#include "core/doppler_centroid_model.h"

#include <algorithm>
#include <cmath>

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

[[noreturn]] void RefuseAnnotation(const char* reason) {
  Log().Message(ALARM, "fDC: %s", reason);
  throw ERROR_DATA();
}

bool IsPositiveNumber(double value) {
  return std::isfinite(value) && value > 0.0;
}

bool AreFinite(const double* values, int count) {
  return std::all_of(values, values + count, [](double value) { return std::isfinite(value); });
}

/// One NaN would turn every pixel of the result into nothing.
void CheckNumbers(const DOPPLER_ANNOTATION& annotation) {
  const int count = annotation.PolynomialCount();
  bool are_finite = AreFinite(annotation.azimuth_times.Pointer(0), count) &&
                    AreFinite(annotation.reference_times.Pointer(0), count);
  for (int i = 0; i < count; ++i) {
    for (int degree = 0; degree < annotation.CoefficientCount(); ++degree) {
      are_finite = are_finite && std::isfinite(annotation.Coefficient(i, degree));
    }
  }
  if (!are_finite) {
    RefuseAnnotation("the centroid's times and coefficients must be numbers");
  }
}

void CheckAnnotation(const DOPPLER_ANNOTATION& annotation) {
  const int count = annotation.PolynomialCount();
  if (count < 1) {
    RefuseAnnotation("fdc_poly_az_time holds no polynomial");
  }
  if (annotation.reference_times.Size() != count) {
    RefuseAnnotation("fdc_poly_rg_ref_time and fdc_poly_az_time have different lengths");
  }
  if (annotation.coefficients.Rows().Count() < count) {
    RefuseAnnotation("fdc_poly_coeff has fewer rows than there are polynomials");
  }
  if (annotation.CoefficientCount() < 1) {
    RefuseAnnotation("fdc_poly_coeff holds no coefficient");
  }
  CheckNumbers(annotation);
  for (int i = 1; i < count; ++i) {
    if (annotation.AzimuthTime(i - 1) >= annotation.AzimuthTime(i)) {
      RefuseAnnotation("fdc_poly_az_time does not rise strictly");
    }
  }
}

/// Points (azimuth time i, value_of(i)) for all polynomials.
template <class VALUE_OF>
void FillPoints(ARRAY<POINT<double>>& points, const DOPPLER_ANNOTATION& annotation,
                VALUE_OF value_of) {
  const int count = annotation.PolynomialCount();
  if (points.Create(RANGE<int>(0, count)) != CONTAINER_OK) {
    Log() << ALARM << "fDC: no memory for the annotation";
    throw ERROR_NO_MEMORY();
  }
  for (int i = 0; i < count; ++i) {
    points.Origin()[i] = POINT<double>(annotation.AzimuthTime(i), value_of(i));
  }
}

}  // namespace

void DOPPLER_CENTROID_MODEL::Setup(PARAMETER_POOL& slave_pool) {
  DOPPLER_ANNOTATION annotation;
  slave_pool.Read("prf", annotation.prf);
  slave_pool.Read("range_sampling_frequency", annotation.range_sampling_frequency);
  slave_pool.Read("oversampling", annotation.oversampling);
  SetRates(annotation);
  slave_pool.Read("fdc_poly_az_time", annotation.azimuth_times);
  slave_pool.Read("fdc_poly_rg_ref_time", annotation.reference_times);
  slave_pool.Read("fdc_poly_coeff", annotation.coefficients);
  SetPolynomials(annotation);
}

void DOPPLER_CENTROID_MODEL::Setup(const DOPPLER_ANNOTATION& annotation) {
  SetRates(annotation);
  SetPolynomials(annotation);
}

void DOPPLER_CENTROID_MODEL::SetRates(const DOPPLER_ANNOTATION& annotation) {
  prf_ = annotation.prf;
  range_sampling_frequency_ = annotation.range_sampling_frequency;
  oversampling_ = annotation.oversampling;
  LOGGING& log = Log();
  log.Message(PARAMETER, "fDC: prf = %f", prf_);
  log.Message(PARAMETER, "fDC: rsf = %f", range_sampling_frequency_);
  log.Message(PARAMETER, "fDC: oversampling = %f", oversampling_);
  log.Message(PARAMETER, "fDC: t_az_start = Not initialized here");
  log.Message(PARAMETER, "fDC: t_rg_start = Not initialized here");
  // With their products, by which the evaluation divides.
  for (const double rate : {prf_, range_sampling_frequency_, oversampling_, prf_ * prf_,
                            oversampling_ * prf_, oversampling_ * range_sampling_frequency_}) {
    if (!IsPositiveNumber(rate)) {
      RefuseAnnotation("prf, range_sampling_frequency and oversampling must be positive numbers");
    }
  }
}

void DOPPLER_CENTROID_MODEL::SetPolynomials(const DOPPLER_ANNOTATION& annotation) {
  coefficient_count_ = 0;  // until they are there
  const int polynomial_count = annotation.PolynomialCount();
  const int coefficient_count = annotation.CoefficientCount();
  Log().Message(PARAMETER, "fDC: number of range polynomials over az: %d", polynomial_count);
  Log().Message(PARAMETER, "fDC: number of coeffs over range: %d", coefficient_count);
  CheckAnnotation(annotation);

  const int support_count = polynomial_count >= 3 ? 2 : polynomial_count;
  FillPoints(reference_time_.points, annotation,
             [&](int polynomial) { return annotation.ReferenceTime(polynomial); });
  Log().Message(PARAMETER, "fDC: support count: %d", support_count);
  reference_time_.interpolation.SetSupportPointCount(support_count);
  reference_time_.interpolation.Init(reference_time_.points);

  coefficients_ = std::make_unique<AZIMUTH_SERIES[]>(static_cast<std::size_t>(coefficient_count));
  for (int degree = 0; degree < coefficient_count; ++degree) {
    AZIMUTH_SERIES& coefficient = coefficients_[static_cast<std::size_t>(degree)];
    FillPoints(coefficient.points, annotation,
               [&](int polynomial) { return annotation.Coefficient(polynomial, degree); });
    coefficient.interpolation.SetSupportPointCount(support_count);
    coefficient.interpolation.Init(coefficient.points);
  }
  coefficient_count_ = coefficient_count;
}

double DOPPLER_CENTROID_MODEL::Frequency(double azimuth_time, double range_time) const {
  const double dt = range_time - reference_time_.interpolation.GetY(azimuth_time);
  auto degree = static_cast<std::size_t>(coefficient_count_) - 1;
  double frequency = coefficients_[degree].interpolation.GetY(azimuth_time);
  while (degree-- > 0) {
    frequency = frequency * dt + coefficients_[degree].interpolation.GetY(azimuth_time);
  }
  return frequency;
}

double DOPPLER_CENTROID_MODEL::PolynomialAt(double azimuth_time, double* coefficients) const {
  for (int degree = 0; degree < coefficient_count_; ++degree) {
    coefficients[degree] =
        coefficients_[static_cast<std::size_t>(degree)].interpolation.GetY(azimuth_time);
  }
  return reference_time_.interpolation.GetY(azimuth_time);
}
