#pragma once

#include <array>

#include "mapping/mapping_base.h"
#include "pool/parameter_pool.h"

/// The mapping of two polynomials of the second degree. At master sample x and line y
///
///     slave range = x + (c0 + c1 y + c2 x + c3 x y + c4 y^2 + c5 x^2)
///
/// with the coefficients of "respl_poly_rg"; the slave azimuth is y plus the same with those of
/// "respl_poly_az". The sum begins with c1 y + c0 and adds c2 x, (c3 x) y, (c4 y) y, (c5 x) x and
/// at last x or y, in this order.
class MAPPING_POLYNOMIAL : public MAPPING_BASE {
 public:
  /// Number of coefficients that are used; a vector may hold more.
  static constexpr int coefficient_count = 6;
  /// c0 ... c5
  using COEFFICIENTS = std::array<double, coefficient_count>;

  /// Reads "respl_poly_az", "respl_poly_rg", "n_samples" and "n_lines" from a pool. Throws the
  /// pool's errors, and ERROR_DATA for too few coefficients and for those that are no numbers.
  explicit MAPPING_POLYNOMIAL(PARAMETER_POOL& pool);
  /// The same from a pool file, which is closed again.
  explicit MAPPING_POLYNOMIAL(const char* pool_file);
  /// Of given coefficients over a master of this size. Throws ERROR_DATA for those that are no
  /// numbers.
  MAPPING_POLYNOMIAL(const COEFFICIENTS& rg, const COEFFICIENTS& az, unsigned n_samples,
                     unsigned n_lines);

  double GetSlaveRange(double range, double azimuth) const override;
  double GetSlaveAzimuth(double range, double azimuth) const override;
  /// From the pool's master size, whatever size the output has.
  unsigned GetMaxRange() const override { return n_samples_ - 1; }
  unsigned GetMaxAzimuth() const override { return n_lines_ - 1; }

  /// c0 ... c5 of the range polynomial.
  const double* RgCoefficients() const noexcept { return respl_poly_rg_.data(); }
  /// c0 ... c5 of the azimuth polynomial.
  const double* AzCoefficients() const noexcept { return respl_poly_az_.data(); }

 private:
  void ReadItems(PARAMETER_POOL& pool);

  COEFFICIENTS respl_poly_rg_{};
  COEFFICIENTS respl_poly_az_{};
  unsigned n_samples_ = 0;
  unsigned n_lines_ = 0;
};
