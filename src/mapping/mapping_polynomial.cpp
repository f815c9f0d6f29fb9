#include "mapping/mapping_polynomial.h"

#include <algorithm>
#include <cmath>

#include "base/error_exception.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

void ReadCoefficients(PARAMETER_POOL& pool, const char* key, VECTOR<double>& coefficients) {
  pool.Read(key, coefficients);
  if (coefficients.Size() < MAPPING_POLYNOMIAL::coefficient_count) {
    Log() << ALARM << "mapping polynomial \"" << key << "\" needs "
          << MAPPING_POLYNOMIAL::coefficient_count << " coefficients, it has "
          << coefficients.Size();
    throw ERROR_DATA();
  }
  const double* const c = coefficients.Pointer(0);
  if (std::any_of(c, c + MAPPING_POLYNOMIAL::coefficient_count,
                  [](double coefficient) { return !std::isfinite(coefficient); })) {
    Log() << ALARM << "mapping polynomial \"" << key << "\" has coefficients that are no numbers";
    throw ERROR_DATA();
  }
}

unsigned ReadSize(PARAMETER_POOL& pool, const char* key) {
  int size = 0;
  pool.Read(key, size);
  return static_cast<unsigned>(size);
}

double Shift(const double* c, double x, double y) {
  double shift = c[1] * y + c[0];
  shift += c[2] * x;
  shift += c[3] * x * y;
  shift += c[4] * y * y;
  shift += c[5] * x * x;
  return shift;
}

}  // namespace

MAPPING_POLYNOMIAL::MAPPING_POLYNOMIAL(PARAMETER_POOL& pool, const SETUP_STEPS& steps) {
  ReadItems(pool, steps);
}

MAPPING_POLYNOMIAL::MAPPING_POLYNOMIAL(const char* pool_file) {
  PARAMETER_POOL pool(pool_file);
  ReadItems(pool, SETUP_STEPS());
}

void MAPPING_POLYNOMIAL::ReadItems(PARAMETER_POOL& pool, const SETUP_STEPS& steps) {
  steps.TakeAll({[&] { ReadCoefficients(pool, "respl_poly_az", respl_poly_az_); },
                 [&] { ReadCoefficients(pool, "respl_poly_rg", respl_poly_rg_); },
                 [&] { n_samples_ = ReadSize(pool, "n_samples"); },
                 [&] { n_lines_ = ReadSize(pool, "n_lines"); }});
}

double MAPPING_POLYNOMIAL::GetSlaveRange(double range, double azimuth) const {
  return Shift(RgCoefficients(), range, azimuth) + range;
}

double MAPPING_POLYNOMIAL::GetSlaveAzimuth(double range, double azimuth) const {
  return Shift(AzCoefficients(), range, azimuth) + azimuth;
}
