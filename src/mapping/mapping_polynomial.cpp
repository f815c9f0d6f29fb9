#include "mapping/mapping_polynomial.h"

#include <algorithm>
#include <cmath>

#include "base/error_exception.h"
#include "base/vector.h"
#include "logging/logging.h"

namespace {

using enum LOGGING_LEVEL_T;

using COEFFICIENTS = MAPPING_POLYNOMIAL::COEFFICIENTS;

constexpr const char* range_key = "respl_poly_rg";
constexpr const char* azimuth_key = "respl_poly_az";

void CheckNumbers(const COEFFICIENTS& coefficients, const char* key) {
  if (!std::ranges::all_of(coefficients, [](double c) { return std::isfinite(c); })) {
    Log() << ALARM << "mapping polynomial \"" << key << "\" has coefficients that are no numbers";
    throw ERROR_DATA();
  }
}

COEFFICIENTS ReadCoefficients(PARAMETER_POOL& pool, const char* key) {
  VECTOR<double> entry;
  pool.Read(key, entry);
  if (entry.Size() < MAPPING_POLYNOMIAL::coefficient_count) {
    Log() << ALARM << "mapping polynomial \"" << key << "\" needs "
          << MAPPING_POLYNOMIAL::coefficient_count << " coefficients, it has " << entry.Size();
    throw ERROR_DATA();
  }
  COEFFICIENTS coefficients{};
  std::copy_n(entry.Pointer(0), coefficients.size(), coefficients.begin());
  CheckNumbers(coefficients, key);
  return coefficients;
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

MAPPING_POLYNOMIAL::MAPPING_POLYNOMIAL(PARAMETER_POOL& pool) {
  ReadItems(pool);
}

MAPPING_POLYNOMIAL::MAPPING_POLYNOMIAL(const char* pool_file) {
  PARAMETER_POOL pool(pool_file);
  ReadItems(pool);
}

MAPPING_POLYNOMIAL::MAPPING_POLYNOMIAL(const COEFFICIENTS& rg, const COEFFICIENTS& az,
                                       unsigned n_samples, unsigned n_lines)
    : respl_poly_rg_(rg), respl_poly_az_(az), n_samples_(n_samples), n_lines_(n_lines) {
  CheckNumbers(az, azimuth_key);
  CheckNumbers(rg, range_key);
}

void MAPPING_POLYNOMIAL::ReadItems(PARAMETER_POOL& pool) {
  respl_poly_az_ = ReadCoefficients(pool, azimuth_key);
  respl_poly_rg_ = ReadCoefficients(pool, range_key);
  n_samples_ = ReadSize(pool, "n_samples");
  n_lines_ = ReadSize(pool, "n_lines");
}

double MAPPING_POLYNOMIAL::GetSlaveRange(double range, double azimuth) const {
  return Shift(RgCoefficients(), range, azimuth) + range;
}

double MAPPING_POLYNOMIAL::GetSlaveAzimuth(double range, double azimuth) const {
  return Shift(AzCoefficients(), range, azimuth) + azimuth;
}
