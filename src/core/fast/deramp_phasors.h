#pragma once

#include "core/doppler_phase.h"
#include "core/fast/column_tracker.h"
#include "core/fast/line_centroids.h"
#include "core/fast/row_functions.h"
#include "core/footprint.h"

/// The phasors that turn the taps of a strip's pixels on one output line. Tap k, at t = k - offset
/// lines from the pixel, is turned by
///
///     exp(2 pi i (u (fa - t) + g (fa^2 - t^2)))
///
/// with u = fdc / PRF and g half its change from line to line, at the slave pixel of the position.
class DERAMP_PHASORS {
 public:
  DERAMP_PHASORS(const DOPPLER_SAMPLER& doppler, const FOOTPRINT& footprint,
                 const RESAMPLE_JOB& job, const ROW_FUNCTIONS& functions);

  /// Brings them to the line at which the columns are. Columns that are not computed get any value.
  void Update(const COLUMN_TRACKER& columns);

  /// Whether `Rate` holds the phasors, and not `Ramp`: with a rate term, and for kernels so long
  /// that the recurrence over a ramp would lose digits.
  bool AreWithRate() const { return doppler_.WithRate() || length_ > longest_ramp; }
  RAMP_ROWS Ramp() const { return {first_.Row(), last_.Row()}; }
  RATE_ROWS Rate() const { return {first_.Row(), step_.Row(), last_.Row()}; }

 private:
  /// Taps; the error of the recurrence grows with the square of their number.
  static constexpr int longest_ramp = 64;

  /// A row of angles with its cosines and sines.
  struct PHASOR_ROW {
    alignas(64) double turns[strip_columns] = {};
    alignas(64) double re[strip_columns] = {};
    alignas(64) double im[strip_columns] = {};

    CONST_COMPLEX_ROW Row() const { return {re, im}; }
    void Evaluate(const ROW_FUNCTIONS& functions, const double* angles) {
      functions.sine_cosine(angles, strip_columns, {re, im});
    }
    /// For angles that change slowly along range. Those of columns that are not computed can be
    /// anything, and must not decide how the others come about.
    void EvaluateClose(const ROW_FUNCTIONS& functions, const double* angles, COLUMN_SET computed) {
      const bool is_done = computed == COLUMN_SET::First(strip_columns) &&
                           functions.close_sine_cosine(angles, {re, im});
      if (!is_done) {
        Evaluate(functions, angles);
      }
    }
  };

  void EvaluateCentroids(const COLUMN_TRACKER& columns);
  void Evaluate(const RANGE_POLYNOMIAL& polynomial, const COLUMN_RUN& run, double* row) const;

  const DOPPLER_SAMPLER& doppler_;
  const int length_;
  const double offset_;
  const ROW_FUNCTIONS& functions_;
  LINE_CENTROIDS centroids_;

  alignas(64) double range_time_[strip_columns] = {};
  alignas(64) double slope_[strip_columns] = {};  ///< u
  alignas(64) double rate_[strip_columns] = {};   ///< g
  PHASOR_ROW first_;                              ///< without rate term the ramp
  PHASOR_ROW step_;
  PHASOR_ROW last_;
};
