#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>

/// Random numbers that depend on their seed and index alone: every part of a scene can be made
/// by itself, in any order and by any thread, and comes out the same.

/// A well-mixed 64-bit number (the finaliser of splitmix64 over seed and index).
constexpr std::uint64_t RandomBits(std::uint64_t seed, std::uint64_t index) noexcept {
  std::uint64_t bits = seed * 0xD1B54A32D192ED03U + (index + 1) * 0x9E3779B97F4A7C15U;
  bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9U;
  bits = (bits ^ bits >> 27) * 0x94D049BB133111EBU;
  return bits ^ bits >> 31;
}

/// Uniform in (0, 1].
inline double RandomUniform(std::uint64_t seed, std::uint64_t index) noexcept {
  return static_cast<double>((RandomBits(seed, index) >> 11) + 1) * 0x1p-53;
}

/// Complex normal, of mean power 1: the speckle of one resolution cell.
inline std::complex<double> RandomSpeckle(std::uint64_t seed, std::uint64_t index) noexcept {
  const double power = -std::log(RandomUniform(seed, 2 * index));
  const double phase = 2.0 * std::numbers::pi * RandomUniform(seed, 2 * index + 1);
  return std::polar(std::sqrt(power), phase);
}

/// The independent random series of a scene.
enum class SERIES : std::uint64_t { FIELDS, TARGETS, SPECKLE, MASTER_NOISE, SLAVE_NOISE };

constexpr std::uint64_t SeedOf(std::uint64_t scene_seed, SERIES series) noexcept {
  return RandomBits(scene_seed, static_cast<std::uint64_t>(series));
}
