#pragma once

#include <cmath>
#include <complex>

/// Weighted sums over pairs (a, b) of pixels, from which their coherence, phase difference and
/// amplitudes follow.
struct PAIR_SUMS {
  std::complex<double> cross;  ///< a conj(b)
  double power_a = 0.0;        ///< |a|^2
  double power_b = 0.0;        ///< |b|^2
  double weight = 0.0;         ///< 1 a pair

  /// The sums of one pair. A pair with a value that is 0, which marks pixels without data, or not
  /// finite counts for nothing.
  static PAIR_SUMS Of(std::complex<double> a, std::complex<double> b) noexcept {
    const std::complex<double> cross{a.real() * b.real() + a.imag() * b.imag(),
                                     a.imag() * b.real() - a.real() * b.imag()};
    const PAIR_SUMS sums{cross, std::norm(a), std::norm(b), 1.0};
    return HoldsData(sums.power_a) && HoldsData(sums.power_b) ? sums : PAIR_SUMS{};
  }

  PAIR_SUMS& Add(const PAIR_SUMS& other, double factor = 1.0) noexcept {
    cross += factor * other.cross;
    power_a += factor * other.power_a;
    power_b += factor * other.power_b;
    weight += factor * other.weight;
    return *this;
  }

  /// |sum a conj(b)| / sqrt(sum |a|^2 sum |b|^2), NaN without pairs.
  double Coherence() const noexcept { return std::abs(cross) / std::sqrt(power_a * power_b); }

 private:
  static bool HoldsData(double power) noexcept { return power > 0.0 && std::isfinite(power); }
};
